#include "script.h"

#include "utilities/serialization.h"

#include <algorithm>

#include <sys/socket.h>

namespace fuzz {

using utilities::Bytes;
using utilities::Type_length_value;

std::string Script::word(std::uint8_t number) {
    static std::array<char const*, 6> const words{"kOn", "kPrepSD", "a", "b", "unknown", ""};
    return words.at(number % words.size());
}

void Script::play() {
    while (next_ != end_) {
        step();
    }
}

void Script::step() {
    std::uint8_t const code = take();
    Client& client = clients_.at(code >> 4U & 3U);
    switch (code & 15U) {
        case 0:
            return connect(client);
        case 1:
            return send(client, take_bytes());
        case 2:
            return send(client, take_introduction());
        case 3: {
            std::uint32_t const number = client.asked + take();
            std::string const state = word(take());
            return send(client, utilities::serialize({Type_length_value(number), Type_length_value(state),
                                                      Type_length_value(std::uint32_t{take()})}));
        }
        case 4: {
            Bytes bytes = take_introduction();
            bytes.resize(std::min<std::size_t>(bytes.size(), take()));
            return send(client, bytes);
        }
        case 5:
            return read(client);
        case 6:
            client.socket = utilities::Socket();
            return;
        case 7:
            ::shutdown(client.socket.get_fd(), SHUT_WR);
            return;
        case 8: {
            std::uint8_t const who = take();
            return ask_(who, word(take()));
        }
        default:
            return;
    }
}

void Script::connect(Client& client) const {
    client = Client();
    utilities::Socket socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    auto const address = utilities::create_unix_address(path_);
    if (::connect(socket.get_fd(), reinterpret_cast<sockaddr const*>(&address), sizeof address) == 0) {
        client.socket = std::move(socket);
    }
}

void Script::read(Client& client) const {
    std::array<std::uint8_t, 512> bytes;
    ssize_t const count = ::recv(client.socket.get_fd(), bytes.data(), bytes.size(), MSG_DONTWAIT);
    if (count <= 0) {
        return;
    }
    client.frames.append(bytes.data(), static_cast<std::size_t>(count));
    while (auto const message = client.frames.take()) {
        client.asked = message->at(0).get_uint32();
    }
}

void Script::send(Client& client, Bytes const& bytes) {
    ::send(client.socket.get_fd(), bytes.data(), bytes.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
}

Bytes Script::take_bytes() {
    std::size_t const wanted = take();
    std::size_t const count = std::min(wanted, static_cast<std::size_t>(end_ - next_));
    Bytes bytes(next_, next_ + count);
    next_ += count;
    return bytes;
}

Bytes Script::take_introduction() {
    std::string const name = word(take());
    std::string const state = word(take());
    return utilities::serialize(
        {Type_length_value("component_client_v1"), Type_length_value(name), Type_length_value(state)});
}

}  // namespace fuzz
