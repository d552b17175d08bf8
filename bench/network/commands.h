#ifndef BENCH_NETWORK_COMMANDS_H
#define BENCH_NETWORK_COMMANDS_H

#include "bench/json_lines/command_table.h"
#include "bench/network/network_player.h"

namespace bench::network {

/// Adds "request", "release", "user_data", "repeat_message", "silence", "speak", "send", "capture", "stop_capture" and
/// "list" to the table; docs/bench.md describes them. The player must outlive the table's use.
void add_commands(Command_table& table, Network_player& player);

/// The bytes that a member gives as hexadecimal text. Throws `Command_error` when they are none or more than `most`.
Bits bytes_of(Arguments& arguments, std::string const& name, std::size_t most);

}  // namespace bench::network

#endif
