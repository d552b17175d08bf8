#include "client_state_notifier/request_slot.h"

#include "utilities/protocol.h"
#include "utilities/serialization.h"

#include <array>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <sys/socket.h>

namespace client_state_notifier {

Request_slot::Request_slot(Surroundings& surroundings) : Request_slot(surroundings.socket_pair(), surroundings) {}

Request_slot::Request_slot(std::pair<utilities::Socket, utilities::Socket> channel, Surroundings& surroundings)
    : wake_up_end_(std::move(channel.first)), callers_end_(std::move(channel.second)), bell_(surroundings.bell()) {}

bool Request_slot::put(State_change_request request) {
    std::uint32_t number = 0;
    {
        base::Lock_guard const lock(mutex_);
        number = ++request_number_;
        request.request_number = number;
        request_ = std::move(request);
    }
    changed_.notify_one();
    return send({utilities::Type_length_value(utilities::get_state_change_request_added())}) || bell_->ring() ||
           !withdraw(number);
}

void Request_slot::stop() {
    {
        base::Lock_guard const lock(mutex_);
        stopped_ = true;
    }
    changed_.notify_one();
    send(utilities::create_terminate_command());
    bell_->ring();
}

// The first word decides: the others are hints at the same request, and the end is told by is_stopped as well.
bool Request_slot::receive_wake_up() {
    std::array<std::uint8_t, 4096> bytes;
    words_.append(bytes.data(), wake_up_end_.recv(bytes.data(), bytes.size(), 0));
    bool const goes_on = !words_.take(word_) || word_.at(0).get_string() != utilities::get_terminate_command();
    while (words_.take(word_)) {
    }
    return goes_on;
}

void Request_slot::forget_wake_ups() {
    bell_->clear();
    words_ = {};
    std::array<std::uint8_t, 4096> words;
    try {
        for (;;) {
            wake_up_end_.recv(words.data(), words.size(), MSG_DONTWAIT);
        }
    } catch (std::runtime_error const&) {  // NOLINT(bugprone-empty-catch): nothing more there
    }
}

bool Request_slot::is_stopped() const {
    base::Lock_guard const lock(mutex_);
    return stopped_;
}

std::optional<State_change_request> Request_slot::take() {
    base::Lock_guard const lock(mutex_);
    return take_locked();
}

bool Request_slot::is_newest(std::uint32_t request_number) const {
    base::Lock_guard const lock(mutex_);
    return request_number == request_number_;
}

std::optional<State_change_request> Request_slot::wait(std::chrono::steady_clock::time_point end) {
    base::Lock_guard const lock(mutex_);
    while (!stopped_ && !request_ && changed_.wait_until(mutex_, end) == std::cv_status::no_timeout) {
    }
    return stopped_ ? std::nullopt : take_locked();
}

std::optional<State_change_request> Request_slot::take_locked() {
    return std::exchange(request_, std::nullopt);
}

// False when the channel has no room or the system no memory for it.
bool Request_slot::send(utilities::Type_length_values const& message) const {
    auto const bytes = utilities::serialize(message);
    try {
        callers_end_.sendl(bytes.data(), bytes.size(), MSG_DONTWAIT);
        return true;
    } catch (std::system_error const&) {
        return false;
    }
}

// False when it is not there any more: the thread was awake and has taken it, or a newer one is in its place.
bool Request_slot::withdraw(std::uint32_t request_number) {
    base::Lock_guard const lock(mutex_);
    if (!request_ || request_->request_number != request_number) {
        return false;
    }
    request_.reset();
    return true;
}

}  // namespace client_state_notifier
