#include "client_state_notifier/notification_server.h"

#include "utilities/logger.h"

#include <algorithm>
#include <exception>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace client_state_notifier {

using Clock = std::chrono::steady_clock;

namespace {

long milliseconds_until(Clock::time_point time) {
    auto const left = std::chrono::ceil<std::chrono::milliseconds>(time - Clock::now()).count();
    return std::max<long>(left, 0);
}

}  // namespace

Notification_server::Notification_server(std::string const& path, Status_callback status_callback,
                                         Request_slot& requests, Client_register& clients)
    : status_callback_(std::move(status_callback)), requests_(requests), clients_(clients), listener_(path) {}

/// Whoever has introduced itself when a request is taken is asked.
void Notification_server::run() {
    for (;;) {
        poll_set_.fill(listener_, requests_, clients_, newcomers_);
        if (poll_set_.wait(calculate_timeout()) && poll_set_.is_listener_ready()) {
            process_new_client();
        }
        process_newcomers();
        if (poll_set_.is_wake_up_ready()) {
            if (!requests_.receive_wake_up()) {
                return;
            }
            process_state_change_request();
        }
        process_client_responses();
        delete_hangup_clients();
        process_timeout();
    }
}

std::optional<Notification_cycle> Notification_server::take_cycle() {
    return std::exchange(cycle_, std::nullopt);
}

/// Milliseconds to the next moment at which there is something to do without an event; -1 when there is none.
long Notification_server::calculate_timeout() const {
    auto next = listener_.pause_end();
    auto const consider = [&](std::optional<Clock::time_point> const& time) {
        if (time && (!next || *time < *next)) {
            next = time;
        }
    };
    consider(newcomers_.next_deadline());
    if (cycle_) {
        consider(cycle_->request().deadline);
    }
    return next ? milliseconds_until(*next) : -1;
}

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

void Notification_server::process_state_change_request() {
    auto request = requests_.take();
    if (!request) {
        return;
    }
    utilities::get_logger().LogInfo() << "sending state change request to clients. new state = " << request->state;
    cycle_.emplace(std::move(*request));
    auto const& taken = cycle_->request();
    std::vector<int> connections;
    for (auto& [connection, name] : clients_.select(taken.predicate)) {
        connections.push_back(connection);
        cycle_->ask(connection, std::move(name));
    }
    leaving_.merge(clients_.send_next_request(connections, taken.state));
    if (is_in_progress() && cycle_->is_complete()) {
        take_cycle()->complete();
    }
}

void Notification_server::process_client_responses() {
    for (int const connection : poll_set_.ready_clients()) {
        process_readable_client(connection);
    }
    call_callback_after_all_clients_responded();
}

/// A connection that hung up is read first: its last answers may still be there.
void Notification_server::process_readable_client(int connection) {
    try {
        clients_.receive(connection);
        process_messages(connection);
    } catch (std::runtime_error const&) {  // closed or broken
        leaving_.emplace(connection, "");
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

/// Drops a request that has been replaced, although the newer one has not been taken yet.
bool Notification_server::is_in_progress() {
    if (cycle_ && !requests_.is_newest(cycle_->request().request_number)) {
        cycle_.reset();
    }
    return cycle_.has_value();
}

void Notification_server::call_callback_after_all_clients_responded() {
    if (is_in_progress() && cycle_->is_complete()) {
        utilities::get_logger().LogInfo() << "calling callback after all clients responded in time";
        take_cycle()->complete();
    }
}

void Notification_server::process_timeout() {
    if (is_in_progress() && Clock::now() >= cycle_->request().deadline) {
        utilities::get_logger().LogInfo() << "calling callback after some clients timed out";
        take_cycle()->time_out();
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

void Notification_server::report(std::string const& name, Client_status status, std::string const& state) const {
    if (status_callback_) {
        status_callback_(name, status, state);
    }
}

}  // namespace client_state_notifier
