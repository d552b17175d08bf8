#ifndef STATEMANAGER_CONFIG_LOCAL_TO_STRING_H
#define STATEMANAGER_CONFIG_LOCAL_TO_STRING_H

#include <cstdint>
#include <string>
#include <vector>

namespace ximo::ap::statemanager::config {

/// A value of the configuration as the log shows it: numbers in decimal, booleans as in the file, text as it is, and
/// each byte of a byte vector as that raw character and a blank.
template <class Value>
std::string local_to_string(Value const& value);

template <>
std::string local_to_string(std::uint32_t const& value);

template <>
std::string local_to_string(bool const& value);

template <>
std::string local_to_string(std::string const& value);

template <>
std::string local_to_string(std::vector<std::uint8_t> const& value);

}  // namespace ximo::ap::statemanager::config

#endif
