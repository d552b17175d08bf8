#include "statemanager/config/get_and_set.h"

#include "ara/log/logging.h"
#include "statemanager/config/json_conversion.h"
#include "statemanager/config/local_to_string.h"

#include <nlohmann/json.hpp>
#include <optional>

namespace ximo::ap::statemanager::config {
namespace {

template <class Value>
std::optional<Value> get(nlohmann::json const& object, std::string const& key) {
    try {
        return json_to<Value>(object.at(key));
    } catch (nlohmann::json::out_of_range const& error) {
        log_missing(key, error.what());
    } catch (nlohmann::json::type_error const& error) {
        ara::log::LogDebug() << "State_manager_json_parser:"
                             << "Incorrect key type: " << error.what();
    }
    return std::nullopt;
}

}  // namespace

void log_missing(std::string const& key, char const* reason) {
    ara::log::LogInfo() << "State_manager_json_parser:"
                        << "Missing " << key << "in configuration."
                        << "caused by" << reason;
}

template <class Value>
bool get_and_set(nlohmann::json const& object, std::string const& key, std::function<void(Value)> const& setter) {
    auto const value = get<Value>(object, key);
    if (!value) {
        return false;
    }
    setter(*value);
    ara::log::LogVerbose() << "State_manager_json_parser: Get " << key
                           << " form configuration with value: " << local_to_string(*value);
    return true;
}

template bool get_and_set(nlohmann::json const&, std::string const&, std::function<void(std::uint32_t)> const&);
template bool get_and_set(nlohmann::json const&, std::string const&, std::function<void(bool)> const&);
template bool get_and_set(nlohmann::json const&, std::string const&, std::function<void(std::string)> const&);
template bool get_and_set(nlohmann::json const&, std::string const&,
                          std::function<void(std::vector<std::uint8_t>)> const&);

}  // namespace ximo::ap::statemanager::config
