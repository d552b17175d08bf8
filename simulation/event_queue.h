#ifndef SIMULATION_EVENT_QUEUE_H
#define SIMULATION_EVENT_QUEUE_H

#include "simulation/time.h"

#include <functional>
#include <map>

namespace simulation {

/// What is to happen, by its time; what has one time happens in the order in which it was put in.
class Event_queue {
 public:
    using Action = std::function<void()>;

    Time now() const { return now_; }

    /// A time that has passed is now.
    void at(Time when, Action action);
    void after(Time delay, Action action) { at(now_ + delay, std::move(action)); }

    /// Lets everything happen that is due before `end`, and what is due now. Ends early, as soon as `is_done`; it is
    /// `end` otherwise. So what happens at the moment at which a wait ends is seen after the next one: in a machine
    /// nothing is heard of in no time.
    void run_until(Time end, std::function<bool()> const& is_done);

    /// Lets a time pass.
    void pass(Time time) {
        run_until(now_ + time, [] { return false; });
    }

    /// Whether something happens just now: the caller is no wait of the driver's, but part of what happens in one.
    bool is_happening() const { return is_happening_; }

 private:
    std::multimap<Time, Action> actions_;
    Time now_{0};
    bool is_happening_{false};
};

}  // namespace simulation

#endif
