// The system's sockets: how they are made and connected, and their calls. A server listens, then sends and receives on
// the sockets that it has accepted; a client connects first.

#include "utilities/poll.h"
#include "utilities/socket.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

#include <sys/socket.h>
#include <unistd.h>

namespace utilities {

namespace {

[[noreturn]] void throw_last_error(char const* text) {
    throw std::system_error(errno, std::generic_category(), text);
}

class System_socket_calls final : public Socket_calls {
 public:
    ssize_t send(int socket, void const* bytes, std::size_t length, int flags) override {
        return ::send(socket, bytes, length, flags);
    }
    ssize_t recv(int socket, void* bytes, std::size_t length, int flags) override {
        return ::recv(socket, bytes, length, flags);
    }
    int close(int socket) override { return ::close(socket); }
    int poll(pollfd* entries, std::size_t count, timespec const* timeout) override {
        return ::ppoll(entries, count, timeout, nullptr);
    }
};

}  // namespace

Socket_calls& system_socket_calls() noexcept {
    static System_socket_calls calls;
    return calls;
}

Socket::Socket(int domain, int type, int protocol) : Socket(::socket(domain, type, protocol)) {}

void Socket::listen(int backlog) const {
    if (::listen(m_socket, backlog) != 0) {
        throw_last_error("Socket::listen(int32_t)");
    }
}

bool Socket::try_connect(sockaddr_un const& address, Socket const& abort) const {
    for (;;) {
        if (::connect(m_socket, reinterpret_cast<sockaddr const*>(&address), sizeof address) == 0) {
            return true;
        }
        if (errno != ENOENT && errno != ECONNREFUSED) {
            throw_last_error("Socket::try_connect(...)");
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
        throw_last_error("socketpair(AF_UNIX, SOCK_STREAM, 0, sockets)");
    }
    return {Socket(sockets[0]), Socket(sockets[1])};
}

}  // namespace utilities
