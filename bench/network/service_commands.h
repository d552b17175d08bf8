#ifndef BENCH_NETWORK_SERVICE_COMMANDS_H
#define BENCH_NETWORK_SERVICE_COMMANDS_H

#include "bench/json_lines/command_table.h"
#include "bench/network/services.h"

namespace bench::network {

/// Adds "offer", "withdraw", "reaction" and "clear_reactions" to the table; docs/bench.md describes them. The services
/// must outlive the table's use.
void add_service_commands(Command_table& table, Services& services);

}  // namespace bench::network

#endif
