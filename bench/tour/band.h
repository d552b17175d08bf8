#ifndef BENCH_TOUR_BAND_H
#define BENCH_TOUR_BAND_H

#include "bench/vehicle/timeline.h"

#include <string>

namespace bench::tour {

inline constexpr double k_band_width = 1790;  ///< px

/// In px.
double band_height(vehicle::Timeline const& events);

/// One life of the daemon as a piece of an SVG picture, `k_band_width` wide. The events are in
/// the order of their times; these are shown in seconds since `start`.
std::string draw_band(vehicle::Timeline const& events, std::int64_t start);

}  // namespace bench::tour

#endif
