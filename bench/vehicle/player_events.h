#ifndef BENCH_VEHICLE_PLAYER_EVENTS_H
#define BENCH_VEHICLE_PLAYER_EVENTS_H

#include "bench/vehicle/timeline.h"

#include <nlohmann/json.hpp>

namespace bench::vehicle {

/// What a player's message means to the machine; empty for what is only the player's own business.
Timeline events_of_hypervisor(nlohmann::json const& message);
Timeline events_of_service_manager(nlohmann::json const& message);
Timeline events_of_node(nlohmann::json const& message);

}  // namespace bench::vehicle

#endif
