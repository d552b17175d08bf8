#ifndef STATEMANAGER_CONFIG_STATE_MANAGER_JSON_PARSER_H
#define STATEMANAGER_CONFIG_STATE_MANAGER_JSON_PARSER_H

#include "statemanager/config/state_manager_config.h"

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace ximo::ap::statemanager::config {

/// Fills the configuration from a JSON file. The file is one object whose member "ap_statemanager" holds the
/// configuration object; its members are described in ap_statemanager.json(5). Keeps no state.
///
/// Each operation logs what is wrong and returns false at the first member that can't do without; members read before
/// that one stay set, so a configuration that was refused must not be used.
class State_manager_json_parser {
 public:
    /// Reads a file. Throws nothing.
    static bool parse(std::string const& path, State_manager_config& config);

    /// Reads one configuration object.
    static bool read_state_manager_configuration(nlohmann::json const& root, State_manager_config& config);

    /// A copy of a member, or null when it is missing. Throws `nlohmann::json::type_error` when the parent is no
    /// object.
    static nlohmann::json get_json_object(nlohmann::json const& parent, std::string const& key);
};

}  // namespace ximo::ap::statemanager::config

#endif
