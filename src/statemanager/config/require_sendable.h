#ifndef STATEMANAGER_CONFIG_REQUIRE_SENDABLE_H
#define STATEMANAGER_CONFIG_REQUIRE_SENDABLE_H

#include "statemanager/config/state_manager_config_abstract.h"

namespace ximo::ap::statemanager::config {

/// Throws `std::length_error` for settings that no call of network management could carry. To be asked only where
/// network management is used: elsewhere the lengths don't matter.
void require_sendable(State_manager_config_abstract const& config);

}  // namespace ximo::ap::statemanager::config

#endif
