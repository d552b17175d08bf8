#ifndef BENCH_NETWORK_NM_STATE_MACHINE_H
#define BENCH_NETWORK_NM_STATE_MACHINE_H

#include <chrono>
#include <functional>
#include <optional>

namespace bench::network {

using Time = std::chrono::steady_clock::time_point;

/// How a node sees the bus. In the last three the network is up ("network mode"); messages are sent in
/// repeat message and in normal operation.
enum class Nm_state { bus_sleep, prepare_bus_sleep, repeat_message, normal_operation, ready_sleep };

/// "bus sleep", "prepare bus sleep", "repeat message", "normal operation", "ready sleep".
char const* name(Nm_state state);

/// The timers of a network. Those of a vehicle are some ten times longer.
struct Nm_timing {
    std::chrono::milliseconds cycle{100};           ///< between two messages of a node
    std::chrono::milliseconds repeat_message{300};  ///< how long a node shows itself after a wake-up
    std::chrono::milliseconds timeout{400};         ///< silence after which a ready node prepares for sleep
    std::chrono::milliseconds wait_bus_sleep{300};  ///< from there to bus sleep
    std::chrono::milliseconds reset{300};           ///< how long a request counts without being repeated
};

/// The states of one node and what moves it between them; time comes from outside.
///
///     bus sleep          network requested, message received, repeat wanted     -> repeat message
///     repeat message     its time is over: network requested                    -> normal operation
///                                          else                                 -> ready sleep
///     normal operation   network released                                       -> ready sleep
///                        repeat wanted, message with that bit                   -> repeat message
///     ready sleep        network requested                                      -> normal operation
///                        repeat wanted, message with that bit                   -> repeat message
///                        nothing sent or received for the time-out              -> prepare bus sleep
///     prepare bus sleep  network requested, message received, repeat wanted     -> repeat message
///                        the waiting time is over                               -> bus sleep
///
/// A time-out of a node that should be sending only starts its timer again.
class Nm_state_machine {
 public:
    using On_change = std::function<void(Nm_state from, Nm_state to, Time when)>;

    Nm_state_machine(Nm_timing const& timing, On_change on_change)
        : timing_(timing), on_change_(std::move(on_change)) {}

    Nm_state state() const { return state_; }
    bool in_network_mode() const { return state_ != Nm_state::bus_sleep && state_ != Nm_state::prepare_bus_sleep; }
    bool sends() const { return state_ == Nm_state::repeat_message || state_ == Nm_state::normal_operation; }
    bool requested() const { return requested_; }

    void set_requested(bool requested, Time now);
    void message_received(bool with_repeat_bit, Time now);
    void message_sent(Time now) { heard_ = now; }
    void want_repeat(Time now);

    /// When `advance` has something to do next, unless something else happens before.
    std::optional<Time> next_deadline() const;

    /// Acts on a deadline that is not later than `now`; one at a time, as of its own time.
    void advance(Time now);

 private:
    void enter(Nm_state state, Time now);

    Nm_timing timing_;
    On_change on_change_;
    Nm_state state_{Nm_state::bus_sleep};
    bool requested_{false};
    Time entered_{};  ///< this state
    Time heard_{};    ///< last message sent or received
};

}  // namespace bench::network

#endif
