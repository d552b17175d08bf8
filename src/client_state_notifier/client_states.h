#ifndef CLIENT_STATE_NOTIFIER_CLIENT_STATES_H
#define CLIENT_STATE_NOTIFIER_CLIENT_STATES_H

#include "client_state_notifier/client_status.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace client_state_notifier {

/// Which clients take part in a request, by name. Called on the server's thread.
using Client_predicate = std::function<bool(std::string const& name)>;

/// Called once on the server's thread when a request has ended, without any lock held.
using Completion_callback = std::function<void(Callback_status status, Client_results const& results)>;

/// Called on the server's thread with a client's name, what is remarkable about it, and the state that it reported,
/// without any lock held.
using Status_callback =
    std::function<void(std::string const& name, Client_status status, std::string const& client_state)>;

/// The processes of this machine that want to be told of each new machine state, and how they answer.
///
/// One request is in progress at a time; a newer one replaces it, and then the older one's completion is never called.
/// Any thread may call. Callbacks must not throw and must not destroy the object; they may call it.
class Client_states {
 public:
    Client_states() = default;
    virtual ~Client_states() = default;
    Client_states(Client_states const&) = delete;
    Client_states& operator=(Client_states const&) = delete;

    /// Name and last known state of each client that is connected.
    virtual std::vector<std::pair<std::string, std::string>> get_connected_clients() const = 0;

    /// The state with which clients that connect from now on are compared.
    virtual void set_default_state(std::string const& state) = 0;

    /// Tells the state to all connected clients that the predicate selects, and collects their answers until `timeout`
    /// from now. Returns at once: true when the completion will come, if no newer request comes first; false when the
    /// request is ignored, because the predicate or the callback is empty, or because the server can't be told of it,
    /// which is logged.
    virtual bool request_state_change(std::string const& state, Client_predicate const& predicate,
                                      Completion_callback const& completed, std::chrono::seconds timeout) = 0;
};

/// Starts the server on its own thread. `current_state` is the state with which clients that connect are compared. An
/// empty status callback is not called.
std::unique_ptr<Client_states> create_client_states(std::string const& current_state,
                                                    Status_callback const& status_callback);

}  // namespace client_state_notifier

#endif
