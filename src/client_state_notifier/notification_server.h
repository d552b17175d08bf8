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
    /// Listens at the path. The slot, the register and the surroundings must outlive the server.
    Notification_server(std::string const& path, Status_callback status_callback, Request_slot& requests,
                        Client_register& clients, Surroundings& surroundings = machine_surroundings());

    /// Serves until the slot says to stop.
    void run() {
        while (turn()) {
        }
    }

    /// One turn of the loop; false when the slot says to stop. For who has no thread for the server: a turn when a
    /// descriptor is ready or the deadline has come finds nothing to wait for.
    bool turn();

    /// When there is something to do without an event, as of now; nothing when there is no such time.
    std::optional<Surroundings::Clock::time_point> next_deadline(Surroundings::Clock::time_point now) const;

    /// The request in progress when `run` was left by an exception.
    std::optional<Notification_cycle> take_cycle();

 private:
    bool hear_wake_ups();
    void process_state_change_request();
    void process_client_responses();
    void delete_hangup_clients();
    void process_timeout();
    bool is_in_progress();
    void call_callback_after_all_clients_responded();

    Surroundings& surroundings_;
    Request_slot& requests_;
    Client_register& clients_;
    Client_connections connections_;
    std::optional<Notification_cycle> cycle_;
};

}  // namespace client_state_notifier

#endif
