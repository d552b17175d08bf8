#ifndef BENCH_VEHICLE_PLAYER_EVENTS_H
#define BENCH_VEHICLE_PLAYER_EVENTS_H

#include "bench/vehicle/timeline.h"

#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace bench::vehicle {

/// What a player's message means to the machine; empty for what is only the player's own business.
Timeline events_of_hypervisor(nlohmann::json const& message);
Timeline events_of_service_manager(nlohmann::json const& message);
Timeline events_of_node(nlohmann::json const& message);

/// The act of an application for what "application 1" was told and did; nothing for other neighbours and commands.
std::optional<Event> event_of_application(std::string const& neighbour, nlohmann::json const& command,
                                          nlohmann::json const& answer);

}  // namespace bench::vehicle

#endif
