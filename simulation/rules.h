#ifndef SIMULATION_RULES_H
#define SIMULATION_RULES_H

#include <string>

namespace simulation {

/// Why a transition was made, out of the states' tables: "command PrepareSD (Running 3)". `command` is the one that the
/// state was offered.
std::string cause_of(std::string const& from, std::string const& to, unsigned command, bool nm_usage);

/// Whether there is a state of this name.
bool is_state(std::string const& name);

}  // namespace simulation

#endif
