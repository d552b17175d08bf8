#ifndef TOOLS_CHECK_CONFIG_MEMBERS_H
#define TOOLS_CHECK_CONFIG_MEMBERS_H

#include "statemanager/config/state_manager_config.h"

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace statectl::check_config {

using Config = ximo::ap::statemanager::config::State_manager_config;

/// What a member's value has to be.
enum class Kind { number, flag, text, bytes, section, instances };

/// One member of the configuration, as the table has it.
struct Member {
    char const* section;  ///< member that holds it; empty for one of the configuration object itself
    char const* name;
    Kind kind;
    bool is_required;  ///< wherever its section is given
    char const* meaning;
    nlohmann::json (*value)(Config const& config);  ///< what the daemon has of it; null for sections and instances
    char const* element;                            ///< of instances: the string in each element
    char const* maximum;                            ///< of instances: the member that bounds their number
    nlohmann::ordered_json keywords;                ///< of its schema, beside or instead of those of its kind
};

/// Every member that the daemon reads, in its order. The checks and the schema are made from it.
std::vector<Member> const& members();

/// The members of one section.
std::vector<Member> members_of(std::string const& section);

/// "section.name", or the name alone.
std::string path_of(Member const& member);

/// What counts when the member is missing, as the daemon's own library has it.
nlohmann::json default_of(Member const& member);

/// The JSON schema of the configuration file.
nlohmann::ordered_json schema();

}  // namespace statectl::check_config

#endif
