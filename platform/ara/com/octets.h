#ifndef ARA_COM_OCTETS_H
#define ARA_COM_OCTETS_H

#include <cstdint>
#include <vector>

/// How the interfaces' code puts octets into IDL types and takes them out.
namespace ara::com {

/// A mapped sequence of octets that looks at a vector. The engine only reads it; it must not outlive the vector.
template <class Sequence>
Sequence view(std::vector<std::uint8_t> const& octets) {
    Sequence sequence{};
    sequence._maximum = static_cast<std::uint32_t>(octets.size());
    sequence._length = sequence._maximum;
    sequence._buffer = const_cast<std::uint8_t*>(octets.data());
    return sequence;
}

template <class Sequence>
std::vector<std::uint8_t> copy(Sequence const& sequence) {
    return {sequence._buffer, sequence._buffer + sequence._length};
}

}  // namespace ara::com

#endif
