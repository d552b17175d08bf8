#ifndef BENCH_TOUR_SVG_H
#define BENCH_TOUR_SVG_H

#include <ostream>
#include <string>

// Places and pieces that all parts of the tour's picture share; lengths in px.
namespace bench::tour {

inline constexpr double k_left = 150;         ///< where the time axis begins
inline constexpr double k_width = 1600;       ///< of the time axis
inline constexpr double k_label_width = 7.2;  ///< of one character of a label

/// Text of any content for a place between tags.
std::string escaped(std::string const& text);

void put_text(std::ostream& out, double x, double y, std::string const& content, char const* fill,
              char const* anchor = "start");

}  // namespace bench::tour

#endif
