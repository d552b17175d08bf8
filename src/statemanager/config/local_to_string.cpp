#include "statemanager/config/local_to_string.h"

namespace ximo::ap::statemanager::config {

template <>
std::string local_to_string(std::uint32_t const& value) {
    return std::to_string(value);
}

template <>
std::string local_to_string(bool const& value) {
    return value ? "true" : "false";
}

template <>
std::string local_to_string(std::string const& value) {
    return value;
}

template <>
std::string local_to_string(std::vector<std::uint8_t> const& value) {
    std::string text;
    text.reserve(2 * value.size());
    for (auto const byte : value) {
        text += static_cast<char>(byte);
        text += ' ';
    }
    return text;
}

}  // namespace ximo::ap::statemanager::config
