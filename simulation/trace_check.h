#ifndef SIMULATION_TRACE_CHECK_H
#define SIMULATION_TRACE_CHECK_H

#include "simulation/trace_life.h"

#include <cstddef>
#include <string>

namespace simulation {

/// What came of holding a life of the real daemon against the simulated one.
struct Trace_verdict {
    enum class Kind {
        agrees,      ///< as far as the trace goes
        disagrees,   ///< at its first step that no order of what was concurrent leads to
        undecidable  ///< from a place on: its neighbours did what a trace doesn't tell, or it tells too little
    };

    Kind kind;
    std::size_t steps;  ///< that agree, from the start on
    std::string text;   ///< where and why not
};

/// Drives the simulated machine with what came to the daemon from outside: keys, network states, applications'
/// requests, clients and their answers, the end. Each cycle of the driver is one of the simulated driver. A step is a
/// line in which the daemon tells what it does: a transition, what follows from it, who is asked and with what result,
/// what is requested of the network. The steps of each thread must be the same in the same order.
///
/// What other threads tell while the driver is in a cycle may have come before it or after it: when a step disagrees,
/// other orders are tried, so many at most.
///
/// Throws `std::runtime_error` for a configuration that the daemon refuses.
Trace_verdict check(Trace_life const& life, std::string const& configuration);

/// Whether a message is a step.
bool carries_step(dlt::Message const& message);

/// "agrees, 312 steps", or where and why not.
std::string text_of(Trace_verdict const& verdict);

}  // namespace simulation

#endif
