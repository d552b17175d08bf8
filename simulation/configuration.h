#ifndef SIMULATION_CONFIGURATION_H
#define SIMULATION_CONFIGURATION_H

#include "simulation/script.h"

#include <optional>
#include <string>

namespace simulation {

/// The configuration of a script: a file's text, or a built-in one whose instances are those that the script calls,
/// with the script's settings. The daemon takes it. Throws `Script_error` for a setting that there is not or that makes
/// the daemon refuse it, and `std::runtime_error` for a file, which names the member and its line and column where one
/// alone is to blame. Not while a life is there.
std::string configuration_of(Script const& script, std::optional<std::string> const& file);

}  // namespace simulation

#endif
