#ifndef TOOLS_COMMANDS_H
#define TOOLS_COMMANDS_H

#include "tools/command.h"

namespace statectl {

using Add_command = void(CLI::App& program, Action& chosen);

// Every subcommand, one line each; command.h shows what is behind a line.
Add_command add_blame_command;
Add_command add_client_command;
Add_command add_clients_command;
Add_command add_check_client_command;
Add_command add_check_config_command;
Add_command add_ecu_alive_command;
Add_command add_com_alive_command;
Add_command add_cwu_command;
Add_command add_holds_command;
Add_command add_explain_command;
Add_command add_history_command;
Add_command add_hold_command;
Add_command add_last_command;
Add_command add_offenders_command;
Add_command add_restart_command;
Add_command add_services_command;
Add_command add_status_command;
Add_command add_wait_command;
Add_command add_watch_command;
Add_command add_why_command;

}  // namespace statectl

#endif
