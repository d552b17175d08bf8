#include "statemanager/config/json_conversion.h"

#include "statemanager/config/document_bounds.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <nlohmann/json.hpp>
#include <stdexcept>

namespace ximo::ap::statemanager::config {
namespace {

using nlohmann::json;

constexpr double k_two_to_32 = 4294967296.0;

// A JSON number is finite. The remainder has the sign of the number and fits a signed 64-bit integer.
std::uint32_t low_bits(double number) {
    return static_cast<std::uint32_t>(static_cast<std::int64_t>(std::fmod(std::trunc(number), k_two_to_32)));
}

// The conversion to the library's own number type refuses a boolean; those to other number types don't.
std::uint32_t to_number(json const& value) {
    return value.is_number_float() ? low_bits(value.get<double>())
                                   : static_cast<std::uint32_t>(value.get<json::number_unsigned_t>());
}

}  // namespace

// The library takes a zero byte for the end of its input and would leave what follows unread.
json parse_document(std::string_view text) {
    if (text.find('\0') != std::string_view::npos) {
        throw std::runtime_error("it contains a zero byte");
    }
    require_bounds(text);
    return json::parse(text);
}

template <>
std::uint32_t json_to<std::uint32_t>(json const& value) {
    return to_number(value);
}

template <>
bool json_to<bool>(json const& value) {
    return value.get<bool>();
}

template <>
std::string json_to<std::string>(json const& value) {
    return value.get<std::string>();
}

template <>
std::vector<std::uint8_t> json_to<std::vector<std::uint8_t>>(json const& value) {
    if (!value.is_array()) {
        return value.get<std::vector<std::uint8_t>>();  // throws, in the library's words
    }
    std::vector<std::uint8_t> bytes;
    bytes.reserve(value.size());
    std::transform(value.begin(), value.end(), std::back_inserter(bytes),
                   [](json const& element) { return static_cast<std::uint8_t>(to_number(element)); });
    return bytes;
}

}  // namespace ximo::ap::statemanager::config
