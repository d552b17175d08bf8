#ifndef BENCH_NETWORK_NM_MESSAGE_H
#define BENCH_NETWORK_NM_MESSAGE_H

#include "bench/network/bits.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace bench::network {

/// One UDP NM message, the whole payload of one datagram:
///
///     byte 0             source node identifier
///     byte 1             control bit vector, see `Control_bit`
///     bytes 2 ... n+1    the node's network requests, n bytes; there when `Control_bit::partial_network` is set
///     the rest           user data
///
/// n is a property of the network: every node on it is told the same number.
struct Nm_message {
    std::uint8_t node{0};
    std::uint8_t control{0};
    Bits requests;
    Bits user_data;

    bool has(std::uint8_t control_bit) const { return (control & control_bit) != 0; }
};

/// Bits of the control bit vector; 0x02, 0x04, 0x20 and 0x80 are reserved, sent as 0 and ignored.
struct Control_bit {
    static constexpr std::uint8_t repeat_message = 0x01;     ///< everybody is asked to show itself
    static constexpr std::uint8_t coordinator_sleep = 0x08;  ///< a coordinator's sleep ready; not sent by these nodes
    static constexpr std::uint8_t active_wakeup = 0x10;      ///< the sender woke the network by itself
    static constexpr std::uint8_t partial_network = 0x40;    ///< the message carries network requests
};

/// Longest user data that fits beside the longest requests into one message.
inline constexpr std::size_t k_most_request_bytes = 32;
inline constexpr std::size_t k_most_user_data = 64;

Bits encode(Nm_message const& message);

/// Nothing when the bytes are no NM message of a network with so many request bytes: too short for what the control
/// bits announce, or longer than any message can be.
std::optional<Nm_message> decode(Bits const& bytes, std::size_t request_bytes);

}  // namespace bench::network

#endif
