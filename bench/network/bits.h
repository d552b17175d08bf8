#ifndef BENCH_NETWORK_BITS_H
#define BENCH_NETWORK_BITS_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace bench::network {

/// Network requests or user data: bit k is bit k mod 8 of byte k / 8, counted from the least significant.
using Bits = std::vector<std::uint8_t>;

/// Whether any bit is set.
bool any(Bits const& bits);

/// Whether a bit is set at or behind byte `length`.
bool any_behind(Bits const& bits, std::size_t length);

/// Sets or clears in `target` what is set in `bits`; `target` keeps its length.
void set_bits(Bits& target, Bits const& bits);
void clear_bits(Bits& target, Bits const& bits);

}  // namespace bench::network

#endif
