#include "client_state_notifier/notification_server.h"

#include "status/server_status.h"
#include "utilities/logger.h"

#include <algorithm>
#include <utility>

namespace client_state_notifier {

namespace {

long milliseconds_between(std::chrono::steady_clock::time_point now, std::chrono::steady_clock::time_point time) {
    auto const left = std::chrono::ceil<std::chrono::milliseconds>(time - now).count();
    return std::max<long>(left, 0);
}

}  // namespace

Notification_server::Notification_server(std::string const& path, Status_callback status_callback,
                                         Request_slot& requests, Client_register& clients, Surroundings& surroundings)
    : surroundings_(surroundings),
      requests_(requests),
      clients_(clients),
      connections_(path, std::move(status_callback), clients, surroundings) {}

// Whoever has introduced itself when a request is taken is asked. What is waited for, and how long, is decided by one
// reading of the clock: whoever is left out for a time is so until this time is over.
bool Notification_server::turn() {
    auto const now = surroundings_.now();
    auto const deadline = next_deadline(now);
    connections_.wait(now, deadline ? milliseconds_between(now, *deadline) : -1, requests_);
    if (!hear_wake_ups()) {
        return false;
    }
    process_client_responses();
    delete_hangup_clients();
    process_timeout();
    return true;
}

std::optional<Notification_cycle> Notification_server::take_cycle() {
    return std::exchange(cycle_, std::nullopt);
}

// False when it is the end.
bool Notification_server::hear_wake_ups() {
    bool const is_told = connections_.is_wake_up_ready();
    bool const is_rung = connections_.is_bell_ready();
    if (is_told && !requests_.receive_wake_up()) {
        return false;
    }
    if (is_rung) {
        requests_.bell().clear();
    }
    if (is_told || is_rung) {
        process_state_change_request();
    }
    return !requests_.is_stopped();
}

std::optional<Surroundings::Clock::time_point> Notification_server::next_deadline(
    Surroundings::Clock::time_point now) const {
    auto next = connections_.next_deadline(now);
    if (cycle_ && (!next || cycle_->request().deadline < *next)) {
        next = cycle_->request().deadline;
    }
    return next;
}

void Notification_server::process_state_change_request() {
    auto request = requests_.take();
    if (!request) {
        return;
    }
    utilities::get_logger().LogInfo() << "sending state change request to clients. new state = " << request->state;
    cycle_.emplace(std::move(*request));
    auto const& taken = cycle_->request();
    status::request_began(taken.state, taken.deadline);
    auto selected = clients_.select(taken.predicate);
    std::vector<int> connections;
    connections.reserve(selected.size());
    for (auto& [connection, name] : selected) {
        connections.push_back(connection);
        cycle_->ask(connection, std::move(name));
        status::client_asked(connection);
    }
    connections_.dismiss(clients_.send_next_request(connections, taken.state));
    if (is_in_progress() && cycle_->is_complete()) {
        status::request_ended(status::Answer::in_time);
        take_cycle()->complete();
    }
}

void Notification_server::process_client_responses() {
    for (auto const& answer : connections_.hear_clients()) {
        if (cycle_) {
            cycle_->answer(answer.connection, answer.status);
        }
    }
    call_callback_after_all_clients_responded();
}

void Notification_server::delete_hangup_clients() {
    for (int const connection : connections_.close_leaving()) {
        if (cycle_) {
            cycle_->lose(connection);
        }
    }
}

// Drops a request that has been replaced, although the newer one has not been taken yet.
bool Notification_server::is_in_progress() {
    if (cycle_ && !requests_.is_newest(cycle_->request().request_number)) {
        cycle_.reset();
    }
    return cycle_.has_value();
}

void Notification_server::call_callback_after_all_clients_responded() {
    if (is_in_progress() && cycle_->is_complete()) {
        utilities::get_logger().LogInfo() << "calling callback after all clients responded in time";
        status::request_ended(status::Answer::in_time);
        take_cycle()->complete();
    }
}

void Notification_server::process_timeout() {
    if (is_in_progress() && surroundings_.now() >= cycle_->request().deadline) {
        utilities::get_logger().LogInfo() << "calling callback after some clients timed out";
        status::request_ended(status::Answer::timed_out);
        take_cycle()->time_out();
    }
}

}  // namespace client_state_notifier
