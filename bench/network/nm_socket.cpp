#include "bench/network/nm_socket.h"

#include <array>
#include <cerrno>
#include <system_error>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace bench::network {

namespace {

sockaddr_in to_system(Endpoint const& endpoint) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(endpoint.port);
    address.sin_addr.s_addr = htonl(endpoint.address);
    return address;
}

}  // namespace

Nm_socket::Nm_socket(Endpoint const& own)
    : descriptor_(::socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {
    auto const address = to_system(own);
    if (descriptor_ < 0 || ::bind(descriptor_, reinterpret_cast<sockaddr const*>(&address), sizeof address) != 0) {
        std::error_code const reason(errno, std::generic_category());
        ::close(descriptor_);
        throw std::system_error(reason, address_text(own.address) + ":" + std::to_string(own.port));
    }
}

Nm_socket::~Nm_socket() {
    ::close(descriptor_);
}

void Nm_socket::send(Endpoint const& to, Bits const& bytes) const {
    auto const address = to_system(to);
    static_cast<void>(::sendto(descriptor_, bytes.data(), bytes.size(), 0, reinterpret_cast<sockaddr const*>(&address),
                               sizeof address));
}

std::optional<Datagram> Nm_socket::receive() const {
    std::array<std::uint8_t, 2048> bytes{};
    for (;;) {
        sockaddr_in from{};
        socklen_t length = sizeof from;
        auto const count =
            ::recvfrom(descriptor_, bytes.data(), bytes.size(), 0, reinterpret_cast<sockaddr*>(&from), &length);
        if (count >= 0) {
            return Datagram{{ntohl(from.sin_addr.s_addr), ntohs(from.sin_port)},
                            {bytes.begin(), bytes.begin() + count}};
        }
        // A node that does not listen is reported on the socket that has sent to it, and means nothing.
        if (errno != ECONNREFUSED && errno != EINTR) {
            return std::nullopt;
        }
    }
}

}  // namespace bench::network
