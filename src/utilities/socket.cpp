// What is done with a socket that is connected, by whatever calls it has. Sending and receiving go on after a signal;
// what fails is thrown with the operation as its text. Nothing is kept but the descriptor, so any thread may call.

#include "utilities/socket.h"

#include "utilities/close_failure.h"
#include "utilities/poll.h"

#include <cerrno>
#include <system_error>

#include <sys/socket.h>

namespace utilities {

namespace {

[[noreturn]] void throw_errno(char const* text) {
    throw std::system_error(errno, std::generic_category(), text);
}

}  // namespace

Socket::Socket(int fd, Socket_calls& calls) : m_socket(fd), m_calls(&calls) {
    if (m_socket == k_none) {
        throw_errno("Socket::Socket(int32_t)");
    }
}

Socket::~Socket() {
    if (m_socket != k_none && m_calls->close(m_socket) != 0) {
        report_close_failure(errno);
    }
}

void Socket::sendl(void const* buffer, std::size_t length, int flags) const {
    auto const* next = static_cast<std::uint8_t const*>(buffer);
    while (length > 0) {
        ssize_t const sent = m_calls->send(m_socket, next, length, flags | MSG_NOSIGNAL);
        if (sent >= 0) {
            next += sent;
            length -= static_cast<std::size_t>(sent);
        } else if (errno != EINTR) {
            throw_errno("Socket::sendl(...)");
        }
    }
}

std::size_t Socket::recv(void* buffer, std::size_t length, int flags) const {
    ssize_t received = 0;
    do {
        received = m_calls->recv(m_socket, buffer, length, flags);
    } while (received < 0 && errno == EINTR);
    if (received > 0) {
        return static_cast<std::size_t>(received);
    }
    if (received == 0) {
        throw ExceptionSocketClosed("Socket::recv called with closed socket");
    }
    if (errno == EAGAIN) {
        throw ExceptionSocketTimeout("Socket::recv timeout, retry");
    }
    throw_errno("Socket::recv(...)");
}

void Socket::recvl(void* buffer, std::size_t length, int flags) const {
    auto* next = static_cast<std::uint8_t*>(buffer);
    while (length > 0) {
        std::size_t const received = recv(next, length, flags);
        next += received;
        length -= received;
    }
}

std::pair<std::int16_t, bool> Socket::poll(short events, long timeout_ms) const {
    auto polled = create_pollfd(events, *this);
    bool const ready = utilities::poll(polled, timeout_ms, *m_calls);
    return {polled.front().revents, ready};
}

}  // namespace utilities
