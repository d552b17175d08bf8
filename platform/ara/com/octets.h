#ifndef ARA_COM_OCTETS_H
#define ARA_COM_OCTETS_H

#include "tarq/com/exception.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
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

/// As `view`, for the result of a method; throws `tarq::com::Infrastructure_exception` for one that can't be sent, so
/// that its caller is refused and does not wait for a reply.
template <class Sequence>
Sequence view_of_result(std::vector<std::uint8_t> const& octets) {
    constexpr std::size_t k_most_octets = 1024;
    if (octets.size() > k_most_octets) {
        throw tarq::com::Infrastructure_exception("a result that is too long");
    }
    return view<Sequence>(octets);
}

/// For the contents of a reply that may be kept.
inline std::shared_ptr<std::vector<std::uint8_t> const> shared(std::vector<std::uint8_t> octets) {
    return std::make_shared<std::vector<std::uint8_t> const>(std::move(octets));
}

template <class Sequence>
std::vector<std::uint8_t> copy(Sequence const& sequence) {
    return {sequence._buffer, sequence._buffer + sequence._length};
}

}  // namespace ara::com

#endif
