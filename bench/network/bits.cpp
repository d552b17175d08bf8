#include "bench/network/bits.h"

#include <algorithm>

namespace bench::network {

namespace {

bool is_set(std::uint8_t byte) {
    return byte != 0;
}

}  // namespace

bool any(Bits const& bits) {
    return std::any_of(bits.begin(), bits.end(), is_set);
}

bool any_behind(Bits const& bits, std::size_t length) {
    return bits.size() > length && std::any_of(bits.begin() + static_cast<std::ptrdiff_t>(length), bits.end(), is_set);
}

void set_bits(Bits& target, Bits const& bits) {
    for (std::size_t byte = 0; byte < std::min(target.size(), bits.size()); ++byte) {
        target[byte] = static_cast<std::uint8_t>(target[byte] | bits[byte]);
    }
}

void clear_bits(Bits& target, Bits const& bits) {
    for (std::size_t byte = 0; byte < std::min(target.size(), bits.size()); ++byte) {
        target[byte] = static_cast<std::uint8_t>(target[byte] & ~bits[byte]);
    }
}

}  // namespace bench::network
