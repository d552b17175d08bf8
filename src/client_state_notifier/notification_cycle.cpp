#include "client_state_notifier/notification_cycle.h"

#include <algorithm>

namespace client_state_notifier {

void Notification_cycle::answer(int connection, Component_client_return_type status) {
    auto const client = unanswered_.find(connection);
    if (client == unanswered_.end()) {
        return;
    }
    record(client->second, status);
    unanswered_.erase(client);
}

void Notification_cycle::lose(int connection) {
    auto const client = unanswered_.find(connection);
    if (client != unanswered_.end()) {
        lost_.push_back(client->second);
        unanswered_.erase(client);
    }
}

void Notification_cycle::complete() const {
    request_.completed(get_overall_status(), results_);
}

void Notification_cycle::time_out() {
    for (auto const& [connection, name] : unanswered_) {
        record(name, Component_client_return_type::timed_out);
    }
    for (auto const& name : lost_) {
        record(name, Component_client_return_type::timed_out);
    }
    request_.completed(Callback_status::timed_out, results_);
}

Callback_status Notification_cycle::get_overall_status() const {
    bool const succeeded = std::all_of(results_.begin(), results_.end(), [](auto const& result) {
        return result.second == Component_client_return_type::succeeded;
    });
    return succeeded ? Callback_status::succeeded : Callback_status::failed;
}

void Notification_cycle::record(std::string const& name, Component_client_return_type status) {
    auto& result = results_.try_emplace(name, status).first->second;
    result = std::max(result, status);
}

}  // namespace client_state_notifier
