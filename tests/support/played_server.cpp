#include "support/played_server.h"

#include "utilities/messages.h"

#include <stdexcept>
#include <thread>
#include <tuple>

#include <linux/sockios.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace test_support {

using utilities::Type_length_value;

namespace {

void await_readable(utilities::Socket const& socket, char const* what) {
    if (!socket.poll(POLLIN, std::chrono::milliseconds(k_patience).count()).second) {
        throw std::runtime_error(std::string(what) + " did not come");
    }
}

}  // namespace

bool operator==(Hello const& left, Hello const& right) {
    return std::tie(left.version, left.name, left.state) == std::tie(right.version, right.name, right.state);
}

bool operator==(Reply const& left, Reply const& right) {
    return std::tie(left.number, left.state, left.status) == std::tie(right.number, right.state, right.status);
}

std::ostream& operator<<(std::ostream& out, Hello const& hello) {
    return out << hello.version << ' ' << hello.name << ' ' << hello.state;
}

std::ostream& operator<<(std::ostream& out, Reply const& reply) {
    return out << reply.number << ' ' << reply.state << ' ' << reply.status;
}

Played_peer::Played_peer(utilities::Socket socket) : socket_(std::move(socket)) {
    timeval const patience{k_patience.count(), 0};
    ::setsockopt(socket_.get_fd(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
}

void Played_peer::await_input() const {
    await_readable(socket_, "A message");
}

Hello Played_peer::hello() const {
    auto const message = utilities::receive_type_length_values(socket_);
    return {message.at(0).get_string(), message.at(1).get_string(), message.at(2).get_string()};
}

void Played_peer::request(std::uint32_t number, std::string const& state) const {
    utilities::send_type_length_values(socket_, {Type_length_value(number), Type_length_value(state)});
}

Reply Played_peer::reply() const {
    auto const message = utilities::receive_type_length_values(socket_);
    return {message.at(0).get_uint32(), message.at(1).get_string(), message.at(2).get_uint32()};
}

void Played_peer::send(utilities::Bytes const& bytes) const {
    socket_.sendl(bytes.data(), bytes.size(), 0);
}

void Played_peer::await_read() const {
    auto const deadline = std::chrono::steady_clock::now() + k_patience;
    for (int unread = 1; unread > 0;) {
        if (::ioctl(socket_.get_fd(), SIOCOUTQ, &unread) != 0 || std::chrono::steady_clock::now() > deadline) {
            throw std::runtime_error("the client does not read");
        }
        std::this_thread::yield();
    }
}

bool Played_peer::is_closed() const {
    char byte = 0;
    try {
        socket_.recv(&byte, 1, 0);
    } catch (utilities::ExceptionSocketClosed const&) {
        return true;
    } catch (std::system_error const& error) {
        return error.code() == std::errc::connection_reset;
    }
    return false;
}

Played_server::Played_server(std::string const& path) : socket_(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0) {
    ::unlink(path.c_str());
    auto const address = utilities::create_unix_address(path);
    if (::bind(socket_.get_fd(), reinterpret_cast<sockaddr const*>(&address), sizeof address) != 0) {
        throw std::system_error(errno, std::generic_category(), path);
    }
    socket_.listen(10);
}

Played_peer Played_server::accept() const {
    await_readable(socket_, "a client");
    return Played_peer(utilities::Socket(::accept4(socket_.get_fd(), nullptr, nullptr, SOCK_CLOEXEC)));
}

}  // namespace test_support
