#include "client_state_notifier/notification_cycle.h"

#include "utilities/logger.h"

#include <algorithm>
#include <new>

namespace client_state_notifier {

namespace {

// The worse, the higher.
unsigned badness(Component_client_return_type status) {
    return status == Component_client_return_type::timed_out ? 256U : static_cast<unsigned>(status);
}

}  // namespace

void Notification_cycle::ask(int connection, std::string name) {
    auto const number = static_cast<std::size_t>(connection);
    places_.resize(std::max(places_.size(), number + 1), k_not_asked);
    places_[number] = asked_.size();
    asked_.push_back({std::move(name)});
    ++unanswered_;
}

void Notification_cycle::answer(int connection, Component_client_return_type status) {
    if (auto* const client = find_open(connection)) {
        client->has_answered = true;
        --unanswered_;
        record(client->name, status);
    }
}

void Notification_cycle::lose(int connection) {
    if (auto* const client = find_open(connection)) {
        client->has_gone = true;
    }
}

void Notification_cycle::complete() const {
    request_.completed(get_overall_status(), results_);
}

// Whatever becomes of the results, the caller is waiting.
void Notification_cycle::time_out() {
    try {
        record_silent_clients();
    } catch (std::bad_alloc const&) {
        utilities::get_logger().LogError() << "no memory for the results of a request for " << request_.state;
    }
    request_.completed(Callback_status::timed_out, results_);
}

void Notification_cycle::record_silent_clients() {
    for (auto const& client : asked_) {
        if (!client.has_answered) {
            record(client.name, Component_client_return_type::timed_out);
        }
    }
}

Callback_status Notification_cycle::get_overall_status() const {
    bool const succeeded = std::all_of(results_.begin(), results_.end(), [](auto const& result) {
        return result.second == Component_client_return_type::succeeded;
    });
    return succeeded ? Callback_status::succeeded : Callback_status::failed;
}

Notification_cycle::Asked_client* Notification_cycle::find_open(int connection) {
    auto const number = static_cast<std::size_t>(connection);
    if (number >= places_.size() || places_[number] == k_not_asked) {
        return nullptr;
    }
    auto& client = asked_[places_[number]];
    return client.has_answered || client.has_gone ? nullptr : &client;
}

void Notification_cycle::record(std::string const& name, Component_client_return_type status) {
    auto const [result, is_first] = results_.emplace(name, status);
    if (!is_first && badness(status) > badness(result->second)) {
        result->second = status;
    }
}

}  // namespace client_state_notifier
