#include "statemanager/nm/bit_vector.h"

#include "base/hex.h"

#include <algorithm>
#include <cstddef>

namespace ximo::ap::statemanager {

namespace {

template <class Operation>
void change_common_bytes(Bit_vector& a, Bit_vector const& b, Operation operation) {
    auto const common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common; ++i) {
        a[i] = static_cast<std::uint8_t>(operation(a[i], b[i]));
    }
}

template <class Operation>
Bit_vector combine_common_bytes(Bit_vector const& a, Bit_vector const& b, Operation operation) {
    Bit_vector result(a);
    result.resize(std::min(a.size(), b.size()));
    change_common_bytes(result, b, operation);
    return result;
}

}  // namespace

Bit_vector& operator|=(Bit_vector& a, Bit_vector const& b) {
    change_common_bytes(a, b, [](unsigned left, unsigned right) { return left | right; });
    return a;
}

Bit_vector& operator&=(Bit_vector& a, Bit_vector const& b) {
    change_common_bytes(a, b, [](unsigned left, unsigned right) { return left & right; });
    return a;
}

Bit_vector operator&(Bit_vector const& a, Bit_vector const& b) {
    return combine_common_bytes(a, b, [](unsigned left, unsigned right) { return left & right; });
}

Bit_vector operator^(Bit_vector const& a, Bit_vector const& b) {
    return combine_common_bytes(a, b, [](unsigned left, unsigned right) { return left ^ right; });
}

Bit_vector operator~(Bit_vector const& a) {
    return a ^ Bit_vector(a.size(), 0xFF);
}

bool has_bits(Bit_vector const& bits) {
    return std::any_of(bits.begin(), bits.end(), [](std::uint8_t byte) { return byte != 0; });
}

std::string bitvector2str(Bit_vector const& bytes) {
    return bytes.empty() ? "" : base::to_hex(bytes) + ' ';
}

}  // namespace ximo::ap::statemanager
