#include "client_state_notifier/request_slot.h"

#include "utilities/messages.h"
#include "utilities/protocol.h"
#include "utilities/serialization.h"

#include <system_error>
#include <utility>

#include <sys/socket.h>

namespace client_state_notifier {

Request_slot::Request_slot() {
    auto [thread, callers] = utilities::socket_pair();
    wake_up_end_ = std::move(thread);
    callers_end_ = std::move(callers);
}

void Request_slot::put(State_change_request request) {
    {
        base::Lock_guard const lock(mutex_);
        request.request_number = ++request_number_;
        request_ = std::move(request);
    }
    changed_.notify_one();
    wake({utilities::Type_length_value(utilities::get_state_change_request_added())});
}

void Request_slot::stop() {
    {
        base::Lock_guard const lock(mutex_);
        stopped_ = true;
    }
    changed_.notify_one();
    wake(utilities::create_terminate_command());
}

bool Request_slot::receive_wake_up() {
    auto const message = utilities::receive_type_length_values(wake_up_end_);
    if (message.at(0).get_string() == utilities::get_terminate_command()) {
        return false;
    }
    // A channel that was full has no room for the word that ends the thread.
    base::Lock_guard const lock(mutex_);
    return !stopped_;
}

std::optional<State_change_request> Request_slot::take() {
    base::Lock_guard const lock(mutex_);
    return take_locked();
}

bool Request_slot::is_newest(std::uint32_t request_number) const {
    base::Lock_guard const lock(mutex_);
    return request_number == request_number_;
}

std::optional<State_change_request> Request_slot::wait() {
    base::Lock_guard const lock(mutex_);
    while (!stopped_ && !request_) {
        changed_.wait(mutex_);
    }
    return stopped_ ? std::nullopt : take_locked();
}

std::optional<State_change_request> Request_slot::take_locked() {
    return std::exchange(request_, std::nullopt);
}

/// A channel without room has wake-ups enough in it. Any other failure means that nobody polls the other end.
void Request_slot::wake(utilities::Type_length_values const& message) const {
    auto const bytes = utilities::serialize(message);
    try {
        callers_end_.sendl(bytes.data(), bytes.size(), MSG_DONTWAIT);
    } catch (std::system_error const&) {  // NOLINT(bugprone-empty-catch)
    }
}

}  // namespace client_state_notifier
