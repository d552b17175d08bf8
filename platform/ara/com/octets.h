#ifndef ARA_COM_OCTETS_H
#define ARA_COM_OCTETS_H

#include "tarq/com/exception.h"

#include <cstdint>
#include <vector>

/// What the interfaces' code shares when it puts arguments into IDL types and takes results out of them.
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

/// Refuses a reply that carries another method's result.
template <class Union>
void expect_result(Union const& data, std::int32_t method) {
    if (data._d != method) {
        throw tarq::com::Infrastructure_exception("The reply carries the result of another method");
    }
}

}  // namespace ara::com

#endif
