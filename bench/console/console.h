#ifndef BENCH_CONSOLE_CONSOLE_H
#define BENCH_CONSOLE_CONSOLE_H

#include "bench/vehicle/machine.h"
#include "services/user_data_names.h"

#include <string>

namespace bench::console {

/// Shows the machine in the terminal and turns the user's keys into the hypervisor's until the user quits. What its
/// processes say on standard error meanwhile goes to the file `messages`. `layout` is that of the NM user data.
int run(vehicle::Machine& machine, std::string const& messages, services::User_data_layout const& layout = {});

}  // namespace bench::console

#endif
