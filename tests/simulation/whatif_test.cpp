// The command line of ap_whatif: what goes together, and what a complaint is about.

#include "support/temporary_directory.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include <gmock/gmock.h>
#include <sys/wait.h>

namespace {

using test_support::Temporary_directory;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

constexpr int k_bad_input = 2;

struct Ended {
    int status;
    std::string output;
};

Ended whatif(std::string const& arguments) {
    auto const command = std::string(AP_WHATIF) + ' ' + arguments + " 2>&1";
    auto* const pipe = ::popen(command.c_str(), "r");  // NOLINT(cert-env33-c): a command of the test's own
    std::string output;
    for (int character = std::fgetc(pipe); character != EOF; character = std::fgetc(pipe)) {
        output += static_cast<char>(character);
    }
    return {WEXITSTATUS(::pclose(pipe)), output};
}

TEST(The_command_line, Refuses_options_that_would_be_ignored) {
    for (auto const* const options : {"--trace " KEPT_TRACE " --json", "--trace " KEPT_TRACE " --log",
                                      "--worst resume --json", "--worst resume --log"}) {
        auto const ended = whatif(options);
        EXPECT_EQ(ended.status, k_bad_input) << options;
        EXPECT_THAT(ended.output, HasSubstr("excludes")) << options;
    }
}

TEST(The_command_line, Fails_where_the_output_cannot_be_written) {
    for (auto const* const options : {"- </dev/null", "--json - </dev/null", "--trace " KEPT_TRACE}) {
        auto const ended = whatif(std::string(options) + " 3>&1 >/dev/full 2>&3");
        EXPECT_EQ(ended.status, 1) << options;
    }
}

TEST(The_command_line, Blames_the_configuration_where_a_trace_is_judged_with_one_that_cannot_be_used) {
    Temporary_directory const directory;
    auto const path = directory.file("bad.json");
    for (auto const* const text : {"{", "[]", R"({"ap_statemanager": {"KnockOutTimer": "soon"}})"}) {
        std::ofstream(path) << text;
        auto const ended = whatif("--trace " KEPT_TRACE " --config " + path);
        EXPECT_EQ(ended.status, k_bad_input) << text;
        EXPECT_THAT(ended.output, StartsWith("ap_whatif: " + path + ": ")) << text;
    }
}

TEST(The_command_line, Tells_how_much_of_a_trace_is_no_message) {
    EXPECT_THAT(whatif("--trace " KEPT_TRACE).output, HasSubstr("1 bytes are no messages, the first is byte 100000\n"));
    Temporary_directory const directory;
    auto const path = directory.file("cut.dlt");
    auto const command = "head -c 30000 " KEPT_TRACE " >" + path;
    ASSERT_EQ(std::system(command.c_str()), 0);  // NOLINT(cert-env33-c): a command of the test's own
    auto const ended = whatif("--trace " + path);
    EXPECT_EQ(ended.status, 0);
    EXPECT_THAT(ended.output, HasSubstr("74 bytes are no messages, the first is byte 29926\n"));
}

TEST(The_command_line, Reads_no_more_than_a_bound) {
    for (auto const* const options : {"/dev/zero", "--config /dev/zero - </dev/null", "--trace /dev/zero"}) {
        auto const ended = whatif(options);
        EXPECT_EQ(ended.status, k_bad_input) << options;
        EXPECT_THAT(ended.output, MatchesRegex("ap_whatif: /dev/zero: it has more than [0-9]+ MiB\n")) << options;
    }
}

}  // namespace
