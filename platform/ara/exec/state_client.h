#ifndef ARA_EXEC_STATE_CLIENT_H
#define ARA_EXEC_STATE_CLIENT_H

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

namespace ara::exec {

/// How far a function group has come towards its state.
enum class Function_group_state_transition : std::uint32_t {
    kInTransition = 0,  ///< still on the way, or the state is not known
    kReached = 1,       ///< the state has been reached
};

/// Outcome of a request that execution management answered.
enum class State_client_result : std::int32_t {
    kSuccess = 0,
    kUnknownState = 1,  ///< there is no such function group or no such state in it
    kRefused = 2,       ///< execution management understood the request and declined it
};

/// Client of execution management for the states of function groups.
///
/// A state `S` of a function group `G` is the unit `G-S.target` of the service manager; asking for a state starts that
/// target, and the state that a group is in is the one whose target is active. The connection to the system bus is made
/// at once, so that the first request does not have to wait for it, kept, and made again after it broke. A bus that is
/// late to greet greets a later request.
///
/// Every operation ends within `k_time_limit`: with a result when execution management answered, or with a
/// `std::runtime_error` whose text names the cause when the bus is not there or no answer came. One thread at a time.
///
/// A request that was given up may still be granted, but only as long as the caller is there. So the end of the client
/// waits for the answer to the newest request when that had none: `k_end_time_limit`, or half of the time within which
/// the service manager wants a beat of the process when that is less; it wants none of one that has reported that it
/// stops. Time for which the process stood still does not count. A bus that is not there costs no time. What came of it
/// is told on standard error unless it was a success.
class StateClient {
 public:
    /// Upper bound of one operation: long enough for a machine that boots or stood still, well below the supervision
    /// period of a process that calls it in its cycle.
    static constexpr std::chrono::milliseconds k_time_limit{1000};

    /// Upper bound of the wait for the bus's greeting when the client is made. What is asked for later does not need
    /// it.
    static constexpr std::chrono::milliseconds k_connect_time_limit{100};

    /// Upper bound of the wait at the end.
    static constexpr std::chrono::seconds k_end_time_limit{10};

    StateClient();
    ~StateClient();
    StateClient(StateClient const&) = delete;
    StateClient& operator=(StateClient const&) = delete;

    /// Asks for a state and returns once the request is accepted or refused; it does not wait until it is reached.
    State_client_result SetState(std::string const& function_group, std::string const& state);

    /// Tells the state that the group is in or on its way to. On a result other than success both outputs are left
    /// as they were.
    State_client_result GetState(std::string const& function_group, std::string& state,
                                 Function_group_state_transition& transition);

 private:
    class Connection;
    std::unique_ptr<Connection> connection_;
};

}  // namespace ara::exec

#endif
