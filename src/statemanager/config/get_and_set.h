#ifndef STATEMANAGER_CONFIG_GET_AND_SET_H
#define STATEMANAGER_CONFIG_GET_AND_SET_H

#include <cstdint>
#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

namespace ximo::ap::statemanager::config {

/// Hands the member `key` of a JSON object to the setter. A missing member and one of another type are logged, the
/// setter is not called, and the result is false. Instantiated for the four types of value that a configuration has.
template <class Value>
bool get_and_set(nlohmann::json const& object, std::string const& key, std::function<void(Value)> const& setter);

/// Logs that a member is missing, with the library's reason.
void log_missing(std::string const& key, char const* reason);

extern template bool get_and_set(nlohmann::json const&, std::string const&, std::function<void(std::uint32_t)> const&);
extern template bool get_and_set(nlohmann::json const&, std::string const&, std::function<void(bool)> const&);
extern template bool get_and_set(nlohmann::json const&, std::string const&, std::function<void(std::string)> const&);
extern template bool get_and_set(nlohmann::json const&, std::string const&,
                                 std::function<void(std::vector<std::uint8_t>)> const&);

}  // namespace ximo::ap::statemanager::config

#endif
