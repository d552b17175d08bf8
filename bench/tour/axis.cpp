#include "bench/tour/axis.h"

#include <algorithm>
#include <cmath>

namespace bench::tour {

namespace {

using vehicle::Kind;

double weight(std::int64_t nanoseconds) {
    return 0.6 + std::sqrt(static_cast<double>(nanoseconds) / 1e7);
}

// What comes in crowds, and beats that come all the time, do not stretch the axis.
bool is_mark(vehicle::Event const& event) {
    return event.kind != Kind::log && event.kind != Kind::watchdog && event.kind != Kind::client &&
           event.kind != Kind::bus && event.kind != Kind::user_data;
}

}  // namespace

Axis::Axis(vehicle::Timeline const& events, double left, double width) : left_(left) {
    std::vector<std::int64_t> times;
    for (auto const& event : events) {
        if (is_mark(event)) {
            times.push_back(event.time);
        }
    }
    std::sort(times.begin(), times.end());
    double length = 0;
    for (std::size_t index = 0; index < times.size(); ++index) {
        length += index == 0 ? 0 : weight(times[index] - times[index - 1]);
        marks_.emplace_back(times[index], length);
    }
    scale_ = length > 0 ? width / (length * 1.04) : 1;
}

double Axis::position(std::int64_t time) const {
    auto const after = std::lower_bound(marks_.begin(), marks_.end(), std::make_pair(time, -1.0));
    if (after == marks_.begin() || marks_.empty()) {
        return left_;
    }
    auto const before = std::prev(after);
    if (after == marks_.end()) {
        return left_ + scale_ * (before->second + std::min(weight(time - before->first), 1.0));
    }
    auto const share = static_cast<double>(time - before->first) / static_cast<double>(after->first - before->first);
    return left_ + scale_ * (before->second + share * (after->second - before->second));
}

}  // namespace bench::tour
