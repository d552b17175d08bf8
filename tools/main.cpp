// ap_statectl: the user's hand on a machine's power life. See ap_statectl(1).

#include "tools/command.h"
#include "tools/completion.h"

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <exception>
#include <iostream>
#include <string>
#include <system_error>
#include <vector>

namespace {

constexpr char const* k_complete = "--complete";  // for the shell: it is no option that a user sees

void print_completions(CLI::App const& program, std::vector<std::string> const& words) {
    for (auto const& name : statectl::completions(program, words)) {
        std::puts(name.c_str());
    }
}

int act(int argc, char** argv) {
    CLI::App program("Looks at and takes part in the power life of this machine", "ap_statectl");
    program.set_version_flag("--version", "ap_statectl " STATECTL_VERSION);
    program.require_subcommand(1);
    statectl::Action chosen;
    statectl::add_commands(program, chosen);
    if (argc > 1 && std::string(argv[1]) == k_complete) {
        print_completions(program, {argv + 2, argv + argc});
        return statectl::k_success;
    }
    if (auto const unknown = statectl::unknown_subcommand(program, {argv + 1, argv + argc}); !unknown.empty()) {
        std::fprintf(stderr, "%s\nRun with --help for more information.\n", unknown.c_str());
        return statectl::k_usage;
    }
    try {
        program.parse(argc, argv);
    } catch (CLI::ParseError const& error) {
        return program.exit(error) == 0 ? statectl::k_success : statectl::k_usage;
    }
    return chosen();
}

}  // namespace

int main(int argc, char** argv) {
    try {
        auto const status = act(argc, argv);
        std::cout.flush();
        if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
            throw std::system_error(errno, std::generic_category(), "what was to be printed is not all there");
        }
        return status;
    } catch (std::exception const& error) {
        std::fprintf(stderr, "ap_statectl: %s\n", error.what());
        return statectl::k_failure;
    }
}
