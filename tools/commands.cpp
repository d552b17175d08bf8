#include "tools/commands.h"

#include "tools/command.h"

namespace statectl {

// In the order of the help.
void add_commands(CLI::App& program, Action& chosen) {
    for (auto const add : {add_client_command, add_check_client_command}) {
        add(program, chosen);
    }
}

}  // namespace statectl
