#ifndef TESTS_UNIT_EXPLORATION_POINT_H
#define TESTS_UNIT_EXPLORATION_POINT_H

#include "notifier_model.h"
#include "statemanager/virtio_command.h"

#include <deque>
#include <tuple>
#include <vector>

namespace exploration {

using ximo::ap::statemanager::virtio::Virtio_command;

/// One step of the world.
struct Action {
    enum class Kind { press, cycle, answer };

    Kind kind;
    Virtio_command key{Virtio_command::none};  ///< of a press
    std::vector<bool> conditions{};            ///< of a cycle, see Conditions
    unsigned status{0};                        ///< of an answer, see Callback_status
};

/// Everything that decides what the machine can do next.
struct Point {
    unsigned state{0};
    bool has_ended{false};  ///< the run loop is over
    bool prepare_sd{false};
    bool forced_shutdown{false};
    std::deque<Virtio_command> queue;
    Virtio_command last_key{Virtio_command::none};  ///< accepted last; the same one again is dropped
    unsigned ticks{0};                              ///< of the post-run state, up to its knock-out count
    Notifier_model notifier;

    auto key() const {
        return std::tuple_cat(std::tie(state, has_ended, prepare_sd, forced_shutdown, queue, last_key, ticks),
                              notifier.key());
    }

    Virtio_command head() const { return queue.empty() ? Virtio_command::none : queue.front(); }

    /// The rule of the queue.
    void press(Virtio_command command) {
        if (command == Virtio_command::shutdown) {
            queue.clear();
        }
        if (command != last_key) {
            queue.push_back(command);
            last_key = command;
        }
    }
};

inline bool operator<(Point const& left, Point const& right) {
    return left.key() < right.key();
}

}  // namespace exploration

#endif
