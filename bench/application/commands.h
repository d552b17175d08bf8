#ifndef BENCH_APPLICATION_COMMANDS_H
#define BENCH_APPLICATION_COMMANDS_H

#include "bench/application/application.h"
#include "bench/json_lines/command_table.h"

namespace bench::application {

/// Adds "request", "release" and "restart" to the table; docs/bench.md describes them. The application must outlive the
/// table's use.
void add_commands(Command_table& table, Application& application);

}  // namespace bench::application

#endif
