#ifndef SIMULATION_SCRIPT_CLIENTS_H
#define SIMULATION_SCRIPT_CLIENTS_H

#include "simulation/script.h"
#include "simulation/script_line.h"

#include <string>
#include <string_view>

namespace simulation {

/// A client's name; the diagnostic ones have short names.
std::string client_name(std::string name);

/// Whether a word begins a client's manner.
bool is_manner(std::string_view word);

/// "after 3s", "silent", "fails after 1s"; nothing is an answer at once.
Client_manner manner(Script_line& line);

/// The manner and state of a client that connects.
Script::Client coming_client(Script_line& line, std::string const& name);

}  // namespace simulation

#endif
