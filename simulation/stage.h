#ifndef SIMULATION_STAGE_H
#define SIMULATION_STAGE_H

#include "simulation/event_queue.h"
#include "simulation/timeline.h"

#include <string>
#include <utility>

namespace simulation {

/// What all players of one life share: its time and its timeline. Once the life is over nothing is noted any more, but
/// what a daemon that has ended says or asks for all the same.
class Stage {
 public:
    explicit Stage(Observer observer) : observer_(std::move(observer)) {}

    Event_queue& events() { return events_; }
    Time now() const { return events_.now(); }

    /// The daemon waits for somebody. That holds up its driver and nobody else: where another thread waits, no time
    /// passes.
    void hold_up(Time time) {
        if (time > Time(0) && !events_.is_happening() && !is_over_) {
            events_.pass(time);
        }
    }

    void note(Kind kind, std::string who, std::string what) {
        if (!is_over_ || (is_heard_ && is_of_daemon(kind))) {
            observer_({now(), kind, std::move(who), std::move(what)});
        }
    }

    /// The life is over: this is its last entry.
    void end(std::string why) {
        is_heard_ = !is_over_ && why == k_end_of_the_daemon;
        note(Kind::end, "", std::move(why));
        is_over_ = true;
    }
    bool is_over() const { return is_over_; }

 private:
    static bool is_of_daemon(Kind kind) {
        return kind == Kind::state || kind == Kind::word || kind == Kind::restart || kind == Kind::machine_state ||
               kind == Kind::request || kind == Kind::power_off;
    }

    Observer observer_;
    Event_queue events_;
    bool is_over_{false};
    bool is_heard_{false};  ///< the daemon, although the life is over
};

}  // namespace simulation

#endif
