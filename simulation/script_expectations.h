#ifndef SIMULATION_SCRIPT_EXPECTATIONS_H
#define SIMULATION_SCRIPT_EXPECTATIONS_H

#include "simulation/script.h"
#include "simulation/script_line.h"

namespace simulation {

/// What a line expects of a life: "expect no word r within 3s of 10s".
Script::Expectation expectation(Script_line& line);

}  // namespace simulation

#endif
