#ifndef SIMULATION_TRACE_WALK_H
#define SIMULATION_TRACE_WALK_H

#include "simulation/trace_life.h"
#include "simulation/trace_verdict.h"

#include <cstddef>
#include <set>
#include <string>

namespace simulation {

/// Where the order of what is told is not that of what happened: each of these came on the other side of the cycle.
using Order = std::set<std::size_t>;

struct Outcome_of_walk {
    Trace_verdict verdict;
    std::size_t place;  ///< of the message that it ended at
};

/// One walk along a trace, beside a simulated life. One life lives at a time.
Outcome_of_walk walk(Trace_life const& life, std::string const& configuration, Order const& order);

}  // namespace simulation

#endif
