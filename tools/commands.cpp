#include "tools/commands.h"

#include "tools/command.h"

namespace statectl {

// In the order of the help.
void add_commands(CLI::App& program, Action& chosen) {
    for (auto const add :
         {add_status_command,    add_why_command,          add_clients_command,      add_holds_command,
          add_wait_command,      add_services_command,     add_watch_command,        add_ecu_alive_command,
          add_com_alive_command, add_cwu_command,          add_hold_command,         add_restart_command,
          add_client_command,    add_check_client_command, add_check_config_command, add_explain_command,
          add_history_command,   add_last_command,         add_blame_command,        add_offenders_command}) {
        add(program, chosen);
    }
}

}  // namespace statectl
