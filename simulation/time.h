#ifndef SIMULATION_TIME_H
#define SIMULATION_TIME_H

#include <chrono>

namespace simulation {

/// Virtual time: since the daemon's start. It passes only while the driver waits.
using Time = std::chrono::nanoseconds;

}  // namespace simulation

#endif
