// ap_statectl: the user's hand on a machine's power life. See ap_statectl(1).

#include "tools/command.h"
#include "tools/completion.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

namespace {

constexpr char const* k_complete = "--complete";  // for the shell: it is no option that a user sees

void print_completions(CLI::App const& program, std::vector<std::string> const& words) {
    for (auto const& name : statectl::completions(program, words)) {
        std::puts(name.c_str());
    }
}

bool is_unknown(CLI::App const& program, std::string const& word) {
    auto const known = program.get_subcommands([&](CLI::App const* command) { return command->get_name() == word; });
    return word.rfind('-', 0) != 0 && known.empty();
}

}  // namespace

int main(int argc, char** argv) {
    try {
        CLI::App program("Looks at and takes part in the power life of this machine", "ap_statectl");
        program.set_version_flag("--version", "ap_statectl " STATECTL_VERSION);
        program.require_subcommand(1);
        statectl::Action chosen;
        statectl::add_commands(program, chosen);
        if (argc > 1 && std::string(argv[1]) == k_complete) {
            print_completions(program, {argv + 2, argv + argc});
            return statectl::k_success;
        }
        if (argc > 1 && is_unknown(program, argv[1])) {
            std::fprintf(stderr, "\"%s\" is no subcommand\nRun with --help for more information.\n", argv[1]);
            return statectl::k_usage;
        }
        try {
            program.parse(argc, argv);
        } catch (CLI::ParseError const& error) {
            return program.exit(error) == 0 ? statectl::k_success : statectl::k_usage;
        }
        return chosen();
    } catch (std::exception const& error) {
        std::fprintf(stderr, "ap_statectl: %s\n", error.what());
        return statectl::k_failure;
    }
}
