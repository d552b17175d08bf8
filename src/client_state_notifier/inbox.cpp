#include "client_state_notifier/inbox.h"

#include <array>
#include <stdexcept>
#include <utility>

#include <sys/socket.h>

namespace client_state_notifier {

void Inbox::receive(utilities::Socket const& socket) {
    std::array<std::uint8_t, 4096> bytes;
    try {
        frames_.append(bytes.data(), socket.recv(bytes.data(), bytes.size(), MSG_DONTWAIT));
    } catch (utilities::ExceptionSocketTimeout const&) {  // NOLINT(bugprone-empty-catch): nothing there after all
    }
}

std::optional<utilities::Type_length_values> Inbox::take(Clock::time_point now) {
    utilities::Type_length_values message;
    return take(message, now) ? std::optional(std::move(message)) : std::nullopt;
}

bool Inbox::take(utilities::Type_length_values& message, Clock::time_point now) {
    if (!frames_.take(message)) {
        return false;
    }
    count_message(now);
    return true;
}

void Inbox::count_message(Clock::time_point now) {
    if (expected_ > 0) {
        --expected_;
        return;
    }
    if (now - second_started_ > std::chrono::seconds(1)) {
        second_started_ = now;
        unasked_ = 0;
    }
    if (++unasked_ > k_most_unasked_a_second) {
        throw std::runtime_error("too many messages");
    }
}

}  // namespace client_state_notifier
