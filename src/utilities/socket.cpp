// A server listens, then sends and receives on the sockets that it has accepted; a client connects first. Sending and
// receiving go on after a signal; what fails is thrown with the operation as its text. Nothing is kept but the
// descriptor, so any thread may call.

#include "utilities/socket.h"

#include "utilities/close_failure.h"
#include "utilities/poll.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

#include <sys/socket.h>
#include <unistd.h>

namespace utilities {

namespace {

[[noreturn]] void throw_errno(char const* text) {
    throw std::system_error(errno, std::generic_category(), text);
}

}  // namespace

Socket::Socket(int fd) : m_socket(fd) {
    if (m_socket == k_none) {
        throw_errno("Socket::Socket(int32_t)");
    }
}

Socket::Socket(int domain, int type, int protocol) : Socket(::socket(domain, type, protocol)) {}

Socket::~Socket() {
    if (m_socket != k_none && ::close(m_socket) != 0) {
        report_close_failure(errno);
    }
}

void Socket::listen(int backlog) const {
    if (::listen(m_socket, backlog) != 0) {
        throw_errno("Socket::listen(int32_t)");
    }
}

void Socket::sendl(void const* buffer, std::size_t length, int flags) const {
    auto const* next = static_cast<std::uint8_t const*>(buffer);
    while (length > 0) {
        ssize_t const sent = ::send(m_socket, next, length, flags | MSG_NOSIGNAL);
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
        received = ::recv(m_socket, buffer, length, flags);
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
    bool const ready = utilities::poll(polled, timeout_ms);
    return {polled.front().revents, ready};
}

bool Socket::try_connect(sockaddr_un const& address, Socket const& abort) const {
    for (;;) {
        if (::connect(m_socket, reinterpret_cast<sockaddr const*>(&address), sizeof address) == 0) {
            return true;
        }
        if (errno != ENOENT && errno != ECONNREFUSED) {
            throw_errno("Socket::try_connect(...)");
        }
        if (abort.poll(POLLIN, k_connect_retry.count()).second) {
            return false;
        }
    }
}

sockaddr_un create_unix_address(std::string const& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() > sizeof address.sun_path) {
        throw std::runtime_error("socket address is too big for unix domain socket path (max size " +
                                 std::to_string(sizeof address.sun_path) + "): " + path);
    }
    std::copy(path.begin(), path.end(), address.sun_path);
    return address;
}

std::pair<Socket, Socket> socket_pair() {
    std::array<int, 2> sockets{};
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets.data()) != 0) {
        throw_errno("socketpair(AF_UNIX, SOCK_STREAM, 0, sockets)");
    }
    return {Socket(sockets[0]), Socket(sockets[1])};
}

}  // namespace utilities
