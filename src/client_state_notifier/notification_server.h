#ifndef CLIENT_STATE_NOTIFIER_NOTIFICATION_SERVER_H
#define CLIENT_STATE_NOTIFIER_NOTIFICATION_SERVER_H

#include "client_state_notifier/client_connections.h"
#include "client_state_notifier/client_states.h"
#include "client_state_notifier/notification_cycle.h"

#include <optional>
#include <string>

namespace client_state_notifier {

/// What the server's thread does: it carries one request at a time to the clients. It waits only in poll: it reads what
/// has arrived and sends what fits into a socket's buffer at once. A client that leaves before it has answered counts
/// as one without an answer.
///
/// A turn of the loop: wait, and let newcomers in; take the request that has been put, and ask; hear the answers; close
/// the connections that leave; end the request whose time is over.
///
/// All of it runs on one thread. Exceptions are failures of the server itself.
class Notification_server {
 public:
    /// Listens at the path. The register and the slot must outlive the server.
    Notification_server(std::string const& path, Status_callback status_callback, Request_slot& requests,
                        Client_register& clients);

    /// Serves until the slot says to stop.
    void run();

    /// The request in progress when `run` was left by an exception.
    std::optional<Notification_cycle> take_cycle();

 private:
    using Clock = Client_connections::Clock;

    long calculate_timeout(Clock::time_point now) const;
    bool hear_wake_ups();
    void process_state_change_request();
    void process_client_responses();
    void delete_hangup_clients();
    void process_timeout();
    bool is_in_progress();
    void call_callback_after_all_clients_responded();

    Request_slot& requests_;
    Client_register& clients_;
    Client_connections connections_;
    std::optional<Notification_cycle> cycle_;
};

}  // namespace client_state_notifier

#endif
