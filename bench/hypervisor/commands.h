#ifndef BENCH_HYPERVISOR_COMMANDS_H
#define BENCH_HYPERVISOR_COMMANDS_H

#include "bench/hypervisor/model.h"
#include "bench/json_lines/command_table.h"

namespace bench::hypervisor {

/// The hypervisor's commands; docs/bench.md lists them all. The model must outlive the table's use.

/// "press", "record", "add_device", "remove_device", "hang_up".
void add_device_commands(Command_table& table, Model& model);

/// "fault", "clear_faults".
void add_fault_commands(Command_table& table, Model& model);

/// "journal", "list".
void add_inspection_commands(Command_table& table, Model& model);

inline void add_commands(Command_table& table, Model& model) {
    add_device_commands(table, model);
    add_fault_commands(table, model);
    add_inspection_commands(table, model);
}

}  // namespace bench::hypervisor

#endif
