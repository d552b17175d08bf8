#ifndef SIMULATION_TRACE_NEIGHBOURS_H
#define SIMULATION_TRACE_NEIGHBOURS_H

#include "simulation/life.h"
#include "tools/dlt/reader.h"

#include <string>

namespace simulation {

/// The key of the simulated console that gives a command of the hypervisor, empty where there is none.
std::string key_of(std::string const& command);

/// The bytes that a trace tells of.
Bits bits_of(std::string const& text);

/// How a client answers whose result is told so.
Client_manner::Answer answer_of(std::string const& status);

/// Has a simulated application make the call that a message tells of; false where it tells of none.
bool apply_application(dlt::Message const& message, Applications& applications);

/// Has a simulated client come, go or report as a message tells.
void apply_client(dlt::Message const& message, Clients& clients);

}  // namespace simulation

#endif
