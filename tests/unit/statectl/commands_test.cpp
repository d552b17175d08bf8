#include "command_line.h"
#include "status/page_file.h"
#include "support/temporary_directory.h"
#include "tools/client_report.h"
#include "tools/page/words.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace statectl {
namespace {

using testing::HasSubstr;

class Commands : public Command_line {};

TEST_F(Commands, Are_described_each_with_its_options) {
    for (auto const* const command : program.get_subcommands([](CLI::App const*) { return true; })) {
        EXPECT_NE(command->get_description(), "");
        for (auto const* const option : command->get_options()) {
            EXPECT_NE(option->get_description(), "") << command->get_name() << ' ' << option->get_name();
        }
    }
}

TEST_F(Commands, Are_in_the_manual_page_each_with_its_options) {
    std::ifstream page(MANUAL_PAGE);
    std::string const manual{std::istreambuf_iterator<char>(page), {}};
    for (auto const* const command : program.get_subcommands([](CLI::App const*) { return true; })) {
        EXPECT_THAT(manual, HasSubstr("\n.Ss " + command->get_name() + "\n"));
        for (auto const* const option : command->get_options()) {
            for (auto const& name : option->get_lnames()) {
                EXPECT_THAT(manual, HasSubstr("Fl -" + name)) << command->get_name();
            }
        }
    }
}

bool has_option(CLI::App const& command, std::string const& name) {
    auto const below = command.get_subcommands([](CLI::App const*) { return true; });
    return command.get_option_no_throw(name) != nullptr ||
           std::any_of(below.begin(), below.end(), [&](CLI::App const* one) { return has_option(*one, name); });
}

// Each paragraph of the synopsis names one command, or several of which at least one has an option.
TEST_F(Commands, Have_the_options_of_the_manual_page) {
    std::ifstream page(MANUAL_PAGE);
    std::string names;
    std::size_t options = 0;
    auto const is_named = [&names](CLI::App const* one) {
        return names.find(' ' + one->get_name() + ' ') != std::string::npos;
    };
    for (std::string line; std::getline(page, line) && line != ".Op Ar SUBCOMMAND";) {
        if (line.rfind(".Cm ", 0) == 0 && line != ".Cm request | release" && line != ".Cm --") {
            names = line + ' ';
        }
        for (auto at = line.find("Fl -"); at != std::string::npos; at = line.find("Fl -", at + 1)) {
            auto const name = '-' + line.substr(at + 3, line.find(' ', at + 3) - at - 3);
            auto const named = program.get_subcommands(is_named);
            EXPECT_TRUE(
                std::any_of(named.begin(), named.end(), [&](CLI::App const* one) { return has_option(*one, name); }))
                << names << name;
            ++options;
        }
    }
    EXPECT_GT(options, 40U);
}

TEST_F(Commands, Explain_traces_of_the_state_manager_and_say_what_others_are) {
    test_support::Temporary_directory const directory;
    auto const error_of = [this](std::string const& file) {
        EXPECT_TRUE(accepts("explain --json " + file));
        testing::internal::CaptureStdout();
        try {
            chosen();
        } catch (std::runtime_error const& error) {
            testing::internal::GetCapturedStdout();
            return std::string(error.what());
        }
        return testing::internal::GetCapturedStdout().substr(0, 1);
    };
    std::string const none = directory.write("none", "no message");
    EXPECT_EQ(error_of(none), none + " holds no DLT message (10 bytes)");
    EXPECT_EQ(error_of(TRACE), "{");
}

TEST_F(Commands, Say_what_is_to_be_done_and_do_not_do_it_yet) {
    EXPECT_TRUE(accepts("check-client --list"));
    EXPECT_TRUE(chosen);
}

TEST_F(Commands, Of_a_client_need_its_name) {
    EXPECT_FALSE(accepts("client"));
    EXPECT_TRUE(accepts("client --name me"));
}

TEST_F(Commands, Of_a_client_take_numbers_in_their_range) {
    EXPECT_FALSE(accepts("client --name me --status 256"));
    EXPECT_FALSE(accepts("client --name me --status good"));
    EXPECT_FALSE(accepts("client --name me --answer-after -1"));
    EXPECT_TRUE(accepts("client --name me --status 255 --answer-after 86400000"));
}

TEST_F(Commands, Take_seconds_that_a_clock_can_count) {
    for (auto const* const words : {"wait Running --for ", "check-config file --limit "}) {
        EXPECT_TRUE(accepts(words + std::string("0.5"))) << words;
        for (auto const* const none : {"nan", "inf", "1e300", "-1", "0", "soon"}) {
            EXPECT_FALSE(accepts(words + std::string(none))) << words << none;
        }
    }
}

TEST_F(Commands, Say_which_word_is_none_and_which_are_known) {
    struct {
        std::vector<std::string> words;
        char const* said;
    } const rows[]{
        {{"hold", "nonsense", "1", "--", "true"},
         "\"nonsense\" is no subcommand of hold: ecu-alive, com-alive and cwu are"},
        {{"ecu-alive", "keep", "1"}, "\"keep\" is no subcommand of ecu-alive: request and release are"},
        {{"nonsense"}, "\"nonsense\" is no subcommand"},
        {{"on\x1b[7m"}, "\"on?[7m\" is no subcommand"},
        {{"hold", "cwu", "nonsense", "--", "true"}, ""},
        {{"status", "nonsense"}, ""},  // CLI11 says so
        {{"hold", "--help"}, ""},
        {{"--help"}, ""},
        {{"hold"}, ""},
        {{}, ""},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(unknown_subcommand(program, row.words), row.said);
    }
}

TEST_F(Commands, Of_a_restart_say_what_comes_of_it) {
    std::string const nothing = ", of which nothing comes but a line in the state manager's log";
    EXPECT_EQ(restart_request_text(1), "Restart of type 1 requested");
    EXPECT_EQ(restart_request_text(5), "Restart of type 5 requested");
    for (auto const type : {0, 2, 3, 4, 6, 9, 255}) {
        EXPECT_EQ(restart_request_text(static_cast<Number>(type)),
                  "Restart of type " + std::to_string(type) + " requested" + nothing);
    }
}

TEST_F(Commands, Of_clients_say_which_lines_about_owners_are_none) {
    test_support::Temporary_directory const directory;
    std::string const page = directory.file("page");
    status::Page_file const file(page, {"/nowhere.json", 100, 3, true});
    struct {
        char const* lines;
        char const* said;
    } const rows[]{
        {"# name user\n\nradio root\ncar radio\tnobody\nmap 4294967\n", ""},
        {"radio root\nradio\n", ": line 2 is not \"NAME USER\""},
        {"radio root \n", ": line 1 is not \"NAME USER\""},
        {" root\n", ": line 1 is not \"NAME USER\""},
        {"radio no-such\x1b\n", ": line 1: there is no user \"no-such?\""},
        {"radio 12x\n", ": line 1: there is no user \"12x\""},
    };
    for (auto const& row : rows) {
        std::string const owners = directory.write("owners", row.lines);
        ASSERT_TRUE(accepts("clients --page " + page + " --owners " + owners));
        testing::internal::CaptureStdout();
        std::string said;
        try {
            EXPECT_EQ(chosen(), k_success);
        } catch (std::runtime_error const& error) {
            said = error.what();
        }
        testing::internal::GetCapturedStdout();
        EXPECT_EQ(said, row.said == std::string() ? "" : owners + row.said) << row.lines;
    }
}

TEST_F(Commands, Leave_the_words_of_a_program_alone) {
    EXPECT_TRUE(accepts("check-client --quiet 10 -- program --json --quiet x"));
}

TEST_F(Commands, Print_names_of_others_without_bytes_that_a_terminal_would_obey) {
    test_support::Temporary_directory const directory;
    auto const file = directory.write("odd.json", R"({"ap_statemanager": {"a\u001b[2J": 1, "b\u009b2J": 1}})");
    ASSERT_TRUE(accepts("check-config " + std::string(file)));
    std::string const name = "c\x1b[2J";
    Client_report const report(false);
    testing::internal::CaptureStdout();
    chosen();
    report.connected(name, name);
    report.requested(1, name);
    report.answered(1, name, 0, std::chrono::milliseconds(0), true);
    report.trouble(name);
    auto const text = testing::internal::GetCapturedStdout();
    for (auto const* const shown : {"\"a?[2J\"", "\"b?2J\"", "connected as c?[2J, state c?[2J", "1: c?[2J",
                                    "succeeded, state c?[2J", "trouble: c?[2J"}) {
        EXPECT_THAT(text, HasSubstr(shown));
    }
    EXPECT_EQ(text.find('\x1b'), std::string::npos);
}

}  // namespace
}  // namespace statectl
