#ifndef UTILITIES_SOCKET_H
#define UTILITIES_SOCKET_H

#include "utilities/socket_calls.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>

#include <sys/un.h>

namespace utilities {

/// No byte came within the socket's receive time-out, or at once on a socket that does not block.
class ExceptionSocketTimeout : public std::runtime_error {
 public:
    using std::runtime_error::runtime_error;
};

/// The peer has closed its end.
class ExceptionSocketClosed : public std::runtime_error {
 public:
    using std::runtime_error::runtime_error;
};

/// Owns one descriptor of a stream socket, or none (-1). It is one of the system's, unless other calls came with it.
///
/// A server binds and listens; a client connects by `try_connect`; then both send by `sendl` and receive by `recv` or
/// `recvl`. A system call that fails throws std::system_error with the operation as its text, unless told otherwise.
/// Any thread may use a socket as long as none of them moves or destroys it.
class Socket {
 public:
    static constexpr std::int32_t k_none = -1;

    /// How long a client waits between two tries to connect, as the protocol has it.
    static constexpr std::chrono::milliseconds k_connect_retry{100};

    Socket() noexcept : m_calls(&system_socket_calls()) {}

    /// Takes ownership of a descriptor; throws when it is -1.
    explicit Socket(int fd, Socket_calls& calls = system_socket_calls());

    /// A new socket, arguments as those of socket(2).
    Socket(int domain, int type, int protocol);

    /// A failed close is reported, see close_failure.h.
    ~Socket();

    Socket(Socket&& other) noexcept : m_socket(std::exchange(other.m_socket, k_none)), m_calls(other.m_calls) {}
    Socket& operator=(Socket&& other) noexcept {
        std::swap(m_socket, other.m_socket);
        std::swap(m_calls, other.m_calls);
        return *this;
    }
    Socket(Socket const&) = delete;
    Socket& operator=(Socket const&) = delete;

    std::int32_t get_fd() const noexcept { return m_socket; }

    void listen(int backlog) const;

    /// Sends all bytes; a peer that has gone is an error and no signal. On a socket that does not block, or with
    /// MSG_DONTWAIT, it throws when the rest does not fit, and a part may have been sent.
    void sendl(void const* buffer, std::size_t length, int flags) const;

    /// Receives what is there, at most `length` bytes, and returns their number, which is above 0. Throws
    /// ExceptionSocketClosed or ExceptionSocketTimeout when there is nothing.
    std::size_t recv(void* buffer, std::size_t length, int flags) const;

    /// Receives exactly `length` bytes.
    void recvl(void* buffer, std::size_t length, int flags) const;

    /// Waits for events of this socket, see the free `poll`: the events that came, and whether there were any.
    std::pair<std::int16_t, bool> poll(short events, long timeout_ms) const;

    /// Connects, trying every `k_connect_retry` as long as there is no server. False when `abort` became readable
    /// first.
    bool try_connect(sockaddr_un const& address, Socket const& abort) const;

 private:
    std::int32_t m_socket{k_none};
    Socket_calls* m_calls;
};

/// The address of a path of at most 108 bytes; a longer one throws std::runtime_error.
sockaddr_un create_unix_address(std::string const& path);

/// Two stream sockets, connected to each other.
std::pair<Socket, Socket> socket_pair();

}  // namespace utilities

#endif
