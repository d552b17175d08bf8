#include "simulation/event_queue.h"

#include <algorithm>
#include <utility>

namespace simulation {

void Event_queue::at(Time when, Action action) {
    actions_.emplace(std::max(when, now_), std::move(action));
}

void Event_queue::run_until(Time end, std::function<bool()> const& is_done) {
    while (!is_done()) {
        auto const next = actions_.begin();
        if (next == actions_.end() || (next->first >= end && next->first > now_)) {
            now_ = std::max(now_, end);
            return;
        }
        now_ = next->first;
        auto const action = std::move(next->second);
        actions_.erase(next);
        auto const was_happening = std::exchange(is_happening_, true);
        action();
        is_happening_ = was_happening;
    }
}

}  // namespace simulation
