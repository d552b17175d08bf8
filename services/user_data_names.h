#ifndef SERVICES_USER_DATA_NAMES_H
#define SERVICES_USER_DATA_NAMES_H

#include "statemanager/config/nm_user_data_config.h"

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace services {

/// What the bits of the network mean to people. Bit k is bit k mod 8 of byte k / 8, counted from the least significant.
using Octets = std::vector<std::uint8_t>;

/// Where the parts of the NM user data lie.
using User_data_layout = ximo::ap::statemanager::config::Nm_user_data_config;

/// The layout in a configuration of the state manager; what it does not say is the default.
User_data_layout layout_in(nlohmann::json const& configuration);

/// The name of each bit that is set, in their order: "awake" for the bit that is set while the machine takes part,
/// "car wake-up", "AC 3", "CAB 5" (as applications number them), "bit 12" for one that has no meaning.
std::vector<std::string> user_data_names(Octets const& data, User_data_layout const& layout = {});

/// The name of each bit of the network state that is set: "CAB 5"; "ECU alive" for the one by which applications keep
/// the ECU alive.
std::vector<std::string> network_state_names(Octets const& state);

/// "a, b, c"; "none" for an empty list.
std::string enumerate(std::vector<std::string> const& names);

}  // namespace services

#endif
