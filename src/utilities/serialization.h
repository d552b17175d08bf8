#ifndef UTILITIES_SERIALIZATION_H
#define UTILITIES_SERIALIZATION_H

#include "utilities/type_length_value.h"

#include <cstdint>
#include <vector>

namespace utilities {

// The wire format. An element is its type (4 bytes), the length of its value (8 bytes) and the value; a message is one
// element of type "list", whose value is the encoded elements in their order. All numbers are in the order of the host:
// both ends run on the same machine. Data that end too early throw std::out_of_range with the text below; a length is
// compared with what is left before anything advances or is allocated.

using Bytes = std::vector<std::uint8_t>;
using Bytes_iterator = Bytes::const_iterator;

constexpr char const* k_end_of_data = "reached end of data while parsing";

/// One element.
Bytes serialize(Type_length_value const& element);

/// A whole message.
Bytes serialize(Type_length_values const& list);

/// Moves the iterator on by `count`; throws and leaves it when less than that is left.
void advance_with_check(Bytes_iterator& iterator, std::uint64_t count, Bytes_iterator end);

/// The value of one element whose header has been read; the iterator stands behind it afterwards.
Type_length_value deserialize_element(Payload_type type, std::uint64_t length, Bytes_iterator& iterator,
                                      Bytes_iterator end);

/// All elements up to `end`, given that a frame of `length` bytes was announced; throws when it is not all there.
Type_length_values deserialize_vector(std::uint64_t length, Bytes_iterator& iterator, Bytes_iterator end);

/// The same into a list that is there; the memory of its elements is used again. What it holds after a throw is of no
/// use.
void deserialize_vector(std::uint64_t length, Bytes_iterator& iterator, Bytes_iterator end, Type_length_values& list);

/// The number of 4 (`std::uint32_t`) or 8 bytes (`std::uint64_t`) that the iterator stands at.
template <class Number>
Number read_number(Bytes_iterator& iterator, Bytes_iterator end);

}  // namespace utilities

#endif
