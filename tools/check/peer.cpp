#include "tools/check/peer.h"

#include <array>
#include <system_error>
#include <thread>

#include <linux/sockios.h>
#include <poll.h>
#include <sys/ioctl.h>

namespace statectl::check {

using Clock = std::chrono::steady_clock;
using utilities::Type_length_value;

std::optional<Type_length_values> Peer::receive(Milliseconds limit) {
    auto const deadline = Clock::now() + limit;
    for (;;) {
        if (auto message = assembler_.take()) {
            return message;
        }
        auto const left = std::chrono::ceil<Milliseconds>(deadline - Clock::now());
        if (is_closed_ || left < Milliseconds::zero() || !receive_bytes(left)) {
            return std::nullopt;
        }
    }
}

bool Peer::receive_bytes(Milliseconds limit) {
    if (!socket_.poll(POLLIN, limit.count()).second) {
        return false;
    }
    std::array<std::uint8_t, 4096> buffer{};
    try {
        assembler_.append(buffer.data(), socket_.recv(buffer.data(), buffer.size(), 0));
        return true;
    } catch (utilities::ExceptionSocketClosed const&) {
        is_closed_ = true;
    } catch (std::system_error const&) {  // reset
        is_closed_ = true;
    }
    return false;
}

void Peer::request(std::uint32_t number, std::string const& state) const {
    send(request_bytes(number, state));
}

void Peer::send(utilities::Bytes const& bytes) const {
    try {
        socket_.sendl(bytes.data(), bytes.size(), 0);
    } catch (std::system_error const&) {  // it has closed the connection
    }
}

void Peer::await_reading(Milliseconds limit) const {
    constexpr Milliseconds k_between_looks{1};
    auto const deadline = Clock::now() + limit;
    int unread = 0;
    while (::ioctl(socket_.get_fd(), SIOCOUTQ, &unread) == 0 && unread > 0 && Clock::now() < deadline) {
        std::this_thread::sleep_for(k_between_looks);
    }
}

utilities::Bytes request_bytes(std::uint32_t number, std::string const& state) {
    return utilities::serialize({Type_length_value(number), Type_length_value(state)});
}

std::string describe(Type_length_values const& message) {
    std::string text;
    for (auto const& element : message) {
        bool const is_number = element.get_type() == utilities::Payload_type::uint32 && element.get_size() >= 4;
        text += (text.empty() ? "" : " ") + (is_number ? std::to_string(element.get_uint32()) : element.get_string());
    }
    return text.empty() ? "a message without elements" : text;
}

}  // namespace statectl::check
