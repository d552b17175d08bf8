#ifndef SIMULATION_TRACE_CHECK_H
#define SIMULATION_TRACE_CHECK_H

#include "simulation/trace_life.h"
#include "simulation/trace_verdict.h"

#include <string>

namespace simulation {

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

/// The same with the configuration that the trace tells, or the built-in one where it tells none. A life whose trace
/// tells one that can't be used is not decidable.
Trace_verdict check_as_told(Trace_life const& life);

}  // namespace simulation

#endif
