#ifndef BENCH_CONSOLE_CONSOLE_H
#define BENCH_CONSOLE_CONSOLE_H

#include "bench/vehicle/vehicle.h"

namespace bench::console {

/// Shows the machine in the terminal and turns the user's keys into the hypervisor's until the user quits.
int run(vehicle::Vehicle& vehicle);

}  // namespace bench::console

#endif
