#ifndef STATEMANAGER_NM_BIT_VECTOR_H
#define STATEMANAGER_NM_BIT_VECTOR_H

#include <cstdint>
#include <string>
#include <vector>

namespace ximo::ap::statemanager {

/// Bits in bytes: bit k is bit k mod 8, counted from the least significant one, of byte k div 8. Network request
/// patterns and NM user data are bit vectors.
using Bit_vector = std::vector<std::uint8_t>;

// Where two vectors differ in length only the bytes that both have take part: the operators that change `a` leave its
// other bytes and its length alone, the others give a vector of the shorter length.
Bit_vector& operator|=(Bit_vector& a, Bit_vector const& b);
Bit_vector& operator&=(Bit_vector& a, Bit_vector const& b);
Bit_vector operator&(Bit_vector const& a, Bit_vector const& b);
Bit_vector operator^(Bit_vector const& a, Bit_vector const& b);
Bit_vector operator~(Bit_vector const& a);

/// Whether any bit is set.
bool has_bits(Bit_vector const& bits);

/// Each byte as two hexadecimal digits and a blank, as the log shows it: "00 01 ff ".
std::string bitvector2str(Bit_vector const& bytes);

}  // namespace ximo::ap::statemanager

#endif
