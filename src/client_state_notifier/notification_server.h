#ifndef CLIENT_STATE_NOTIFIER_NOTIFICATION_SERVER_H
#define CLIENT_STATE_NOTIFIER_NOTIFICATION_SERVER_H

#include "client_state_notifier/client_register.h"
#include "client_state_notifier/client_states.h"
#include "client_state_notifier/listening_socket.h"
#include "client_state_notifier/newcomers.h"
#include "client_state_notifier/notification_cycle.h"
#include "client_state_notifier/poll_set.h"
#include "client_state_notifier/request_slot.h"

#include <chrono>
#include <map>
#include <optional>
#include <string>

namespace client_state_notifier {

/// What the server's thread does: takes connections, hears clients, and carries one request at a time to them. It waits
/// only in poll: it reads what has arrived and sends what fits into a socket's buffer at once. A client that breaks the
/// protocol, closes, or does not read is logged and dropped; if it was asked, it counts as not answered.
///
/// All of it runs on one thread. Exceptions are failures of the server itself.
class Notification_server {
 public:
    /// Connections at the same time; one more is closed at once.
    static constexpr std::size_t k_most_connections = 1'000;

    /// Listens at the path. The register and the slot must outlive the server.
    Notification_server(std::string const& path, Status_callback status_callback, Request_slot& requests,
                        Client_register& clients);

    /// Serves until the slot says to stop.
    void run();

    /// The request in progress when `run` was left by an exception.
    std::optional<Notification_cycle> take_cycle();

 private:
    long calculate_timeout(std::chrono::steady_clock::time_point now) const;
    bool hear_wake_ups();

    void process_new_client();
    void process_newcomers();
    void process_introduction(Introduced_client client);
    void send_current_state(int connection, std::string const& state);
    void process_state_change_request();
    void process_client_responses();
    void process_readable_client(int connection);
    void process_messages(int connection);
    void process_answer(int connection, Client_answer const& answer);
    bool is_in_progress();
    void call_callback_after_all_clients_responded();
    void process_timeout();
    void delete_hangup_clients();
    void report(std::string const& name, Client_status status, std::string const& state) const;

    Status_callback status_callback_;
    Request_slot& requests_;
    Client_register& clients_;
    Listening_socket listener_;
    Newcomers newcomers_;
    std::optional<Notification_cycle> cycle_;
    Poll_set poll_set_;
    std::map<int, std::string> leaving_;  ///< connections that end with this turn of the loop, and why
};

}  // namespace client_state_notifier

#endif
