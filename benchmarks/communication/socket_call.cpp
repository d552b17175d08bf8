#include "benchmarks/communication/yardsticks.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace benchmarks {

namespace {

using Message = std::array<char, 64>;

[[noreturn]] void fail(char const* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

sockaddr_un address_of(std::string const& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    return address;
}

bool receive(int socket, Message& message) {
    return ::recv(socket, message.data(), message.size(), MSG_WAITALL) == static_cast<ssize_t>(message.size());
}

}  // namespace

Socket_call::Socket_call(std::string const& path) : socket_(::socket(AF_UNIX, SOCK_STREAM, 0)) {
    auto const address = address_of(path);
    if (::connect(socket_, reinterpret_cast<sockaddr const*>(&address), sizeof address) != 0) {
        fail("connect");
    }
}

Socket_call::~Socket_call() {
    ::close(socket_);
}

void Socket_call::operator()() const {
    Message message{};
    if (::send(socket_, message.data(), message.size(), 0) < 0 || !receive(socket_, message)) {
        fail("ping-pong");
    }
}

void serve_socket(std::string const& path, std::function<void()> const& ready) {
    int const listener = ::socket(AF_UNIX, SOCK_STREAM, 0);
    auto const address = address_of(path);
    if (::bind(listener, reinterpret_cast<sockaddr const*>(&address), sizeof address) != 0 ||
        ::listen(listener, 1) != 0) {
        fail("listen");
    }
    ready();
    int const connection = ::accept(listener, nullptr, nullptr);
    Message message{};
    while (receive(connection, message)) {
        if (::send(connection, message.data(), message.size(), MSG_NOSIGNAL) < 0) {
            break;
        }
    }
}

}  // namespace benchmarks
