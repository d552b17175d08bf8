#ifndef BENCH_SERVICE_MANAGER_COMMANDS_H
#define BENCH_SERVICE_MANAGER_COMMANDS_H

#include "bench/json_lines/command_table.h"
#include "bench/service_manager/manager.h"

namespace bench::service_manager {

/// Adds "reaction", "clear_reactions", "set_unit" and "list" to the table; docs/bench.md describes them. The manager
/// must outlive the table's use.
void add_commands(Command_table& table, Manager& manager);

}  // namespace bench::service_manager

#endif
