#ifndef BENCH_TOUR_PICTURE_H
#define BENCH_TOUR_PICTURE_H

#include "bench/vehicle/timeline.h"

#include <string>

namespace bench::tour {

/// The timeline of a run as an SVG picture: the states as coloured bars, and below them on the same time axis the keys,
/// the state words, the machine states, the commands to the power-off service and the watchdog's beats.
std::string draw(vehicle::Timeline const& events);

}  // namespace bench::tour

#endif
