#include "tools/commands.h"

#include "tools/command.h"
#include "tools/page/words.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>

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

std::string unknown_subcommand(CLI::App const& program, std::vector<std::string> const& words) {
    auto const* app = &program;
    for (auto const& word : words) {
        auto const known = app->get_subcommands([](CLI::App const*) { return true; });
        if (known.empty() || word.rfind('-', 0) == 0) {
            return "";  // what is said of other words is CLI11's
        }
        auto const named = std::find_if(known.begin(), known.end(),
                                        [&](CLI::App const* command) { return command->get_name() == word; });
        if (named == known.end()) {
            std::vector<std::string> names;
            std::transform(known.begin(), known.end(), std::back_inserter(names),
                           [](CLI::App const* command) { return command->get_name(); });
            return quoted(word) + " is no subcommand" +
                   (app == &program ? "" : " of " + app->get_name() + ": " + joined(names) + " are");
        }
        app = *named;
    }
    return "";
}

}  // namespace statectl
