#ifndef MAIN_STATE_MANAGER_HOLDER_H
#define MAIN_STATE_MANAGER_HOLDER_H

#include "statemanager/state_manager.h"

#include <atomic>
#include <memory>

/// Owns the process's one State_manager so that a signal handler on any thread can reach it: a handler sees a complete
/// object or none, and an object is destroyed only when no handler is using it any more.
///
/// It has no destructor of its own; whoever fills it empties it.
class State_manager_holder {
 public:
    using State_manager = ximo::ap::statemanager::State_manager;

    /// Takes an object over and destroys the one held before; an empty pointer empties the holder. Main thread only.
    void reset(std::unique_ptr<State_manager> manager) {
        std::unique_ptr<State_manager> const before(held_.exchange(manager.release()));
        while (users_ != 0) {
            // a handler on another thread is just asking the old object to shut down
        }
    }

    /// Calls `action(State_manager&)` when an object is held. Any thread, any signal handler.
    template <class Action>
    void with(Action const& action) {
        ++users_;
        if (auto* const manager = held_.load(); manager != nullptr) {
            action(*manager);
        }
        --users_;
    }

 private:
    std::atomic<State_manager*> held_{nullptr};
    std::atomic<int> users_{0};
};

#endif
