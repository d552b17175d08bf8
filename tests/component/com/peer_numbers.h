#ifndef TESTS_COMPONENT_COM_PEER_NUMBERS_H
#define TESTS_COMPONENT_COM_PEER_NUMBERS_H

#include <cstdint>

namespace com_test {

/// The number in a COM-alive request, or the only octet of a network request, tells what the peer's handler does
/// besides telling of it.
inline constexpr std::uint8_t k_throw = 100;
inline constexpr std::uint8_t k_wait = 101;  ///< until the command "continue"
inline constexpr std::uint8_t k_break_promise = 102;

}  // namespace com_test

#endif
