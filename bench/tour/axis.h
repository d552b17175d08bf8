#ifndef BENCH_TOUR_AXIS_H
#define BENCH_TOUR_AXIS_H

#include "bench/vehicle/timeline.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace bench::tour {

/// Time in, position out. Nothing to see happens in most of the time, so long pauses are drawn shorter.
class Axis {
 public:
    /// From position `left` on, at most `width` wide.
    Axis(vehicle::Timeline const& events, double left, double width);

    double position(std::int64_t time) const;

    /// The times at which something happened, with their places before scaling.
    std::vector<std::pair<std::int64_t, double>> const& marks() const { return marks_; }

 private:
    std::vector<std::pair<std::int64_t, double>> marks_;
    double const left_;
    double scale_{1};
};

}  // namespace bench::tour

#endif
