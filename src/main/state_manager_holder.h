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
        Use const use(users_);
        if (auto* const manager = held_.load(); manager != nullptr) {
            action(*manager);
        }
    }

 private:
    /// Counts one user for as long as it lives, also when an action ends with an exception.
    class Use {
     public:
        explicit Use(std::atomic<int>& users) : users_(users) { ++users_; }
        ~Use() { --users_; }
        Use(Use const&) = delete;
        Use& operator=(Use const&) = delete;

     private:
        std::atomic<int>& users_;
    };

    std::atomic<State_manager*> held_{nullptr};
    std::atomic<int> users_{0};
};

#endif
