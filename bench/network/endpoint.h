#ifndef BENCH_NETWORK_ENDPOINT_H
#define BENCH_NETWORK_ENDPOINT_H

#include <cstdint>
#include <optional>
#include <string>

namespace bench::network {

/// Where a node is reached: an IPv4 address (first byte in the highest bits) and a UDP port.
struct Endpoint {
    std::uint32_t address{0};
    std::uint16_t port{0};
};

inline bool operator==(Endpoint const& left, Endpoint const& right) {
    return left.address == right.address && left.port == right.port;
}

/// The number of a loopback address such as "127.0.0.11". Nothing for any other address: the bench's network never
/// leaves the machine.
std::optional<std::uint32_t> loopback_address(std::string const& text);

/// "127.0.0.11"
std::string address_text(std::uint32_t address);

}  // namespace bench::network

#endif
