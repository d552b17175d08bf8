#ifndef SIMULATION_TRACE_LIFE_H
#define SIMULATION_TRACE_LIFE_H

#include "tools/dlt/reader.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace simulation {

/// One life of the state manager, as its messages in a trace. Where some may be missing because bytes of the trace are
/// no messages, the next one has a gap.
using Trace_life = std::vector<dlt::Message>;

/// What was found in a trace.
struct Trace_lives {
    std::vector<Trace_life> lives;           ///< of all machines; one at least
    std::size_t strange_bytes{0};            ///< that are no messages
    std::optional<std::size_t> first_gap{};  ///< at which byte the first of them is
};

/// Throws `std::runtime_error` where there is no life.
Trace_lives lives_of(std::string_view trace);

/// What the daemon says that it was configured with, as text of a configuration file; empty where it doesn't: the level
/// of its log was not verbose. Throws `std::runtime_error` where it is no text.
std::string configuration_in(Trace_life const& life);

}  // namespace simulation

#endif
