#ifndef SIMULATION_SCRIPT_EVENTS_H
#define SIMULATION_SCRIPT_EVENTS_H

#include "simulation/life.h"
#include "simulation/script.h"
#include "simulation/script_line.h"

#include <functional>

namespace simulation {

/// What happens to a life, as the rest of a line tells it: "key r", "client dcm fails after 1s". The instances that it
/// calls are noted in the script.
std::function<void(Life&)> act(Script_line& line, Script& script);

}  // namespace simulation

#endif
