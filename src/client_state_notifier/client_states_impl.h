#ifndef CLIENT_STATE_NOTIFIER_CLIENT_STATES_IMPL_H
#define CLIENT_STATE_NOTIFIER_CLIENT_STATES_IMPL_H

#include "client_state_notifier/client_states_front.h"

#include <chrono>
#include <string>
#include <thread>

namespace client_state_notifier {

/// The server on a thread of its own, which takes no signals.
///
/// When the server itself fails, that is logged and all connections are closed. After a pause it is started again;
/// requests in the pause complete as timed out, at once and without results, so that nobody waits for ever.
class Client_states_impl : public Client_states_front {
 public:
    /// How long the server is not there after it has failed: a failure that stays is told once a second.
    static constexpr std::chrono::milliseconds k_pause{1000};

    Client_states_impl(std::string const& current_state, Status_callback status_callback, std::string socket_path,
                       Surroundings& surroundings = machine_surroundings());

    /// Ends and joins the thread; the socket file has gone when it returns.
    ~Client_states_impl() override;

 private:
    void thread_main_exception_handling();
    void thread_main();
    void pause();

    Status_callback const status_callback_;
    std::string const socket_path_;
    std::thread thread_;
};

}  // namespace client_state_notifier

#endif
