#ifndef TESTS_UNIT_STATECTL_COMMAND_LINE_H
#define TESTS_UNIT_STATECTL_COMMAND_LINE_H

#include "tools/command.h"

#include <CLI/CLI.hpp>
#include <string>

#include <gmock/gmock.h>

namespace statectl {

/// The tool's commands; what a command line chooses is not done.
class Command_line : public testing::Test {
 protected:
    Command_line() { add_commands(program, chosen); }

    bool accepts(std::string const& words) {
        try {
            program.parse(words);
            return true;
        } catch (CLI::ParseError const&) {
            return false;
        }
    }

    CLI::App program;
    Action chosen;
};

}  // namespace statectl

#endif
