#ifndef SIMULATION_TRACE_LIFE_H
#define SIMULATION_TRACE_LIFE_H

#include "tools/dlt/reader.h"

#include <string>
#include <string_view>
#include <vector>

namespace simulation {

/// One life of the state manager, as its messages in a trace.
using Trace_life = std::vector<dlt::Message>;

/// The lives in a trace, of all machines. Throws `std::runtime_error` where there is none.
std::vector<Trace_life> lives_of(std::string_view trace);

/// What the daemon says that it was configured with, as text of a configuration file; empty where it doesn't: the level
/// of its log was not verbose. Throws `std::runtime_error` where it is no text.
std::string configuration_in(Trace_life const& life);

}  // namespace simulation

#endif
