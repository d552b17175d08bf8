#include "client_state_notifier/client_connections.h"

#include "status/server_status.h"
#include "utilities/logger.h"

#include <algorithm>
#include <exception>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace client_state_notifier {

namespace {

Status_callback or_nobody(Status_callback callback) {
    return callback ? std::move(callback) : [](auto const& /*name*/, auto /*status*/, auto const& /*state*/) {};
}

}  // namespace

Client_connections::Client_connections(std::string const& path, Status_callback status_callback,
                                       Client_register& clients, Surroundings& surroundings)
    : surroundings_(surroundings),
      status_callback_(or_nobody(std::move(status_callback))),
      clients_(clients),
      listener_(path, surroundings),
      newcomers_(surroundings),
      poll_set_(surroundings.calls()) {}

std::optional<Client_connections::Clock::time_point> Client_connections::next_deadline(Clock::time_point now) const {
    auto const pause_end = listener_.pause_end(now);
    auto const introduction = newcomers_.next_deadline();
    if (pause_end && introduction) {
        return std::min(*pause_end, *introduction);
    }
    return pause_end ? pause_end : introduction;
}

void Client_connections::wait(Clock::time_point now, long timeout_ms, Request_slot const& requests) {
    poll_set_.fill(now, listener_, requests, clients_, newcomers_);
    if (poll_set_.wait(timeout_ms) && poll_set_.is_listener_ready()) {
        process_new_client();
    }
    process_newcomers();
}

void Client_connections::process_new_client() {
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

void Client_connections::process_newcomers() {
    for (auto& client : newcomers_.hear(poll_set_.newcomers(), poll_set_.newcomer_count())) {
        process_introduction(std::move(client));
    }
}

void Client_connections::process_introduction(Introduced_client client) {
    utilities::get_logger().LogInfo() << "client connected: name = " << client.name
                                      << ", current state = " << client.state;
    if (clients_.has(client.name)) {
        status_callback_(client.name, Client_status::connected_under_known_name, client.state);
    }
    int const connection = client.socket.get_fd();
    clients_.add(std::move(client.socket), client.name, std::move(client.inbox));
    status::client_connected(connection, client.name, client.state);
    poll_set_.forget_clients();
    auto const current_state = clients_.current_state();
    if (client.state != current_state) {
        send_current_state(connection, current_state);
    }
    std::vector<Answer_in_turn> nobody_waits_for_these;
    process_messages(connection, nobody_waits_for_these);
}

void Client_connections::send_current_state(int connection, std::string const& state) {
    try {
        clients_.send_request(connection, state);
    } catch (std::system_error const& error) {
        leaving_.emplace(connection, error.what());
    }
}

std::vector<Client_connections::Answer_in_turn> Client_connections::hear_clients() {
    std::vector<Answer_in_turn> answers;
    for (int const connection : poll_set_.ready_clients()) {
        process_readable_client(connection, answers);
    }
    return answers;
}

// A connection that hung up is read first: its last answers may still be there.
void Client_connections::process_readable_client(int connection, std::vector<Answer_in_turn>& answers) {
    try {
        clients_.receive(connection);
        process_messages(connection, answers);
    } catch (utilities::ExceptionSocketClosed const&) {
        leaving_.emplace(connection, "");
    } catch (std::runtime_error const& error) {  // broken
        leaving_.emplace(connection, error.what());
    }
}

void Client_connections::process_messages(int connection, std::vector<Answer_in_turn>& answers) {
    auto const now = surroundings_.now();
    try {
        while (auto const answer = clients_.take_answer(connection, now)) {
            if (answer->is_in_turn) {
                status::client_answered(connection, answer->state, static_cast<std::uint8_t>(answer->status));
                answers.push_back({connection, answer->status});
            } else {
                status::client_out_of_turn(clients_.name_of(connection));
                status_callback_(clients_.name_of(connection), Client_status::answered_out_of_turn, answer->state);
            }
        }
    } catch (std::exception const& error) {
        leaving_.emplace(connection, error.what());
    }
}

std::vector<int> Client_connections::close_leaving() {
    std::vector<int> closed;
    for (auto const& [connection, reason] : std::exchange(leaving_, {})) {
        auto const name = clients_.remove(connection);
        poll_set_.forget_clients();
        closed.push_back(connection);
        status::client_left(connection);
        if (!reason.empty()) {
            utilities::get_logger().LogWarn() << "client dropped: " << name << ", reason: " << reason;
        }
        utilities::get_logger().LogInfo() << "client disconnected: " << name;
    }
    return closed;
}

}  // namespace client_state_notifier
