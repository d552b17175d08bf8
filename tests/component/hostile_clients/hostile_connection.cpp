#include "hostile_connection.h"

#include <array>
#include <cerrno>

#include <sys/socket.h>

namespace hostile {

using utilities::Type_length_value;

bool Hostile_connection::connect(std::string const& path) {
    utilities::Socket socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    auto const address = utilities::create_unix_address(path);
    if (::connect(socket.get_fd(), reinterpret_cast<sockaddr const*>(&address), sizeof address) != 0) {
        return false;
    }
    socket_ = std::move(socket);
    frames_ = {};
    kept.reset();
    turns = 0;
    ++lives;
    return true;
}

void Hostile_connection::introduce(std::string const& name, std::string const& state) {
    send({Type_length_value("component_client_v1"), Type_length_value(name), Type_length_value(state)});
}

void Hostile_connection::answer(std::uint32_t request, std::string const& state, std::uint32_t status) {
    send({Type_length_value(request), Type_length_value(state), Type_length_value(status)});
}

void Hostile_connection::send_bytes(utilities::Bytes const& bytes) {
    if (::send(descriptor(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT) < 0 && errno != EAGAIN) {
        close();
    }
}

std::optional<Hostile_connection::Request> Hostile_connection::take_request() {
    std::array<std::uint8_t, 4096> bytes;
    ssize_t const count = ::recv(descriptor(), bytes.data(), bytes.size(), MSG_DONTWAIT);
    if (count > 0) {
        frames_.append(bytes.data(), static_cast<std::size_t>(count));
    } else if (count == 0 || errno != EAGAIN) {
        close();
    }
    auto const message = frames_.take();
    return message ? std::optional(Request{message->at(0).get_uint32(), message->at(1).get_string()}) : std::nullopt;
}

}  // namespace hostile
