#ifndef STATEMANAGER_CONFIG_JSON_CONVERSION_H
#define STATEMANAGER_CONFIG_JSON_CONVERSION_H

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace ximo::ap::statemanager::config {

/// The JSON document in a text, which may begin with a UTF-8 byte-order mark. Nesting is bounded, because the library
/// copies values by recursion, and so is the number of values, because each of them may be logged. Throws
/// `std::exception` with a text that says what is wrong.
nlohmann::json parse_document(std::string_view text);

// The values of the configuration. A value of another type than the target throws `nlohmann::json::type_error` in the
// library's words. `json_to` is the library's conversion but for two things that it leaves open or does too much of:
// a boolean is no number, and a number that does not fit is defined on every machine: its fraction is dropped, then the
// lowest 32 (or 8) bits of its two's complement are taken. So -1 is 4294967295, 2.9 is 2, and 4294967297 is 1.

template <class Value>
Value json_to(nlohmann::json const& value);

template <>
std::uint32_t json_to<std::uint32_t>(nlohmann::json const& value);

template <>
bool json_to<bool>(nlohmann::json const& value);

template <>
std::string json_to<std::string>(nlohmann::json const& value);

template <>
std::vector<std::uint8_t> json_to<std::vector<std::uint8_t>>(nlohmann::json const& value);

}  // namespace ximo::ap::statemanager::config

#endif
