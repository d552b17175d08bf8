// The part of Notification_server that looks after the connections: clients come, speak and go.

#include "client_state_notifier/notification_server.h"
#include "utilities/logger.h"

#include <exception>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace client_state_notifier {

void Notification_server::process_new_client() {
    auto connection = listener_.accept();
    if (!connection) {
        return;
    }
    if (clients_.size() + newcomers_.size() >= k_most_connections) {
        utilities::get_logger().LogWarn() << "connection refused, there are too many: " << k_most_connections;
        return;
    }
    newcomers_.add(std::move(*connection));
}

void Notification_server::process_newcomers() {
    for (auto& client : newcomers_.hear(poll_set_.newcomers(), poll_set_.newcomer_count())) {
        process_introduction(std::move(client));
    }
}

void Notification_server::process_introduction(Introduced_client client) {
    utilities::get_logger().LogInfo() << "client connected: name = " << client.name
                                      << ", current state = " << client.state;
    if (clients_.has(client.name)) {
        report(client.name, Client_status::connected_under_known_name, client.state);
    }
    int const connection = client.socket.get_fd();
    clients_.add(std::move(client.socket), client.name, std::move(client.inbox));
    poll_set_.forget_clients();
    auto const current_state = clients_.current_state();
    if (client.state != current_state) {
        send_current_state(connection, current_state);
    }
    process_messages(connection);
}

void Notification_server::send_current_state(int connection, std::string const& state) {
    try {
        clients_.send_request(connection, state);
    } catch (std::system_error const& error) {
        leaving_.emplace(connection, error.what());
    }
}

/// A connection that hung up is read first: its last answers may still be there.
void Notification_server::process_readable_client(int connection) {
    try {
        clients_.receive(connection);
        process_messages(connection);
    } catch (utilities::ExceptionSocketClosed const&) {
        leaving_.emplace(connection, "");
    } catch (std::runtime_error const& error) {  // broken
        leaving_.emplace(connection, error.what());
    }
}

void Notification_server::process_messages(int connection) {
    try {
        while (auto const answer = clients_.take_answer(connection)) {
            process_answer(connection, *answer);
        }
    } catch (std::exception const& error) {
        leaving_.emplace(connection, error.what());
    }
}

void Notification_server::process_answer(int connection, Client_answer const& answer) {
    if (!answer.is_in_turn) {
        report(clients_.name_of(connection), Client_status::answered_out_of_turn, answer.state);
    } else if (cycle_) {
        cycle_->answer(connection, answer.status);
    }
}

void Notification_server::report(std::string const& name, Client_status status, std::string const& state) const {
    if (status_callback_) {
        status_callback_(name, status, state);
    }
}

void Notification_server::delete_hangup_clients() {
    for (auto const& [connection, reason] : std::exchange(leaving_, {})) {
        auto const name = clients_.remove(connection);
        poll_set_.forget_clients();
        if (cycle_) {
            cycle_->lose(connection);
        }
        if (!reason.empty()) {
            utilities::get_logger().LogWarn() << "client dropped: " << name << ", reason: " << reason;
        }
        utilities::get_logger().LogInfo() << "client disconnected: " << name;
    }
}

}  // namespace client_state_notifier
