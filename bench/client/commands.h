#ifndef BENCH_CLIENT_COMMANDS_H
#define BENCH_CLIENT_COMMANDS_H

#include "bench/client/client_player.h"
#include "bench/json_lines/command_table.h"

namespace bench::client {

/// Adds "behave" and "list" to the table; docs/bench.md describes them. The player must outlive the table's use.
void add_commands(Command_table& table, Client_player& player);

}  // namespace bench::client

#endif
