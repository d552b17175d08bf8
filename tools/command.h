#ifndef TOOLS_COMMAND_H
#define TOOLS_COMMAND_H

#include <functional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace statectl {

// A subcommand is a function in the file of its subject; its name stands in commands.h, and in commands.cpp in the
// order of the help. The function describes the subcommand, from which help and completion are made, and says what it
// does when it is chosen:
//
//     void add_greet_command(CLI::App& program, Action& chosen) {
//         auto options = std::make_shared<Greet_options>();
//         auto* const command = program.add_subcommand("greet", "Greets the machine");
//         command->add_option("--name", options->name, "Who greets")->required();
//         command->callback([options, &chosen] { chosen = [options] { return greet(*options); }; });
//     }

/// What the chosen subcommand does: it returns the exit status. An exception is a failure that is told on standard
/// error.
using Action = std::function<int()>;

constexpr int k_success = 0;
constexpr int k_failure = 1;  ///< it could not do what it was asked, or what it checked is not so
constexpr int k_usage = 2;    ///< wrong words on the command line

/// Adds all subcommands to the program. The one that the command line names sets `chosen`.
void add_commands(CLI::App& program, Action& chosen);

/// Which of the words stands where a subcommand has to and is none, in a sentence; empty when there is no such word.
std::string unknown_subcommand(CLI::App const& program, std::vector<std::string> const& words);

}  // namespace statectl

#endif
