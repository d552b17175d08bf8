#include "bench/network/endpoint.h"

#include <array>

#include <arpa/inet.h>

namespace bench::network {

std::optional<std::uint32_t> loopback_address(std::string const& text) {
    in_addr address{};
    if (::inet_pton(AF_INET, text.c_str(), &address) != 1) {
        return std::nullopt;
    }
    auto const number = ntohl(address.s_addr);
    constexpr std::uint32_t k_loopback_network = 127;
    return number >> 24U == k_loopback_network ? std::optional(number) : std::nullopt;
}

std::string address_text(std::uint32_t address) {
    in_addr const bytes{htonl(address)};
    std::array<char, INET_ADDRSTRLEN> text{};
    ::inet_ntop(AF_INET, &bytes, text.data(), text.size());
    return text.data();
}

}  // namespace bench::network
