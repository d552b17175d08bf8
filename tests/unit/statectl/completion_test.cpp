#include "tools/completion.h"

#include "command_line.h"
#include "tools/page/words.h"

#include <CLI/CLI.hpp>

#include <gmock/gmock.h>

namespace statectl {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Completion : public testing::Test {
 protected:
    Completion() {
        auto* const greet = program.add_subcommand("greet", "");
        greet->add_option("--name", text, "");
        greet->add_flag("--never", flag, "");
        greet->add_option("--tone", text, "")->check(CLI::IsMember({"kind", "cold"}));
        greet->add_option("COMMAND", words, "");
        program.add_subcommand("grumble", "");
        program.set_version_flag("--version", "1");
    }

    CLI::App program;
    std::string text;
    bool flag{false};
    std::vector<std::string> words;
};

TEST_F(Completion, Of_nothing_typed_is_everything) {
    EXPECT_THAT(completions(program, {""}), ElementsAre("greet", "grumble", "--help", "--version"));
}

TEST_F(Completion, Of_what_is_typed_begins_with_it) {
    EXPECT_THAT(completions(program, {"gre"}), ElementsAre("greet"));
    EXPECT_THAT(completions(program, {"--v"}), ElementsAre("--version"));
    EXPECT_THAT(completions(program, {"x"}), IsEmpty());
}

TEST_F(Completion, Behind_a_subcommand_is_that_of_its_options) {
    EXPECT_THAT(completions(program, {"greet", ""}), ElementsAre("--help", "--name", "--never", "--tone"));
    EXPECT_THAT(completions(program, {"greet", "--never", "--na"}), ElementsAre("--name"));
}

TEST_F(Completion, Leaves_values_to_the_user) {
    EXPECT_THAT(completions(program, {"greet", "--name", ""}), IsEmpty());
    EXPECT_THAT(completions(program, {"greet", "--name", "me", "--ne"}), ElementsAre("--never"));
}

TEST_F(Completion, Knows_values_of_which_there_is_a_list) {
    EXPECT_THAT(completions(program, {"greet", "--tone", ""}), ElementsAre("kind", "cold"));
    EXPECT_THAT(completions(program, {"greet", "--tone", "c"}), ElementsAre("cold"));
}

class Completion_of_the_tool : public Command_line {};

TEST_F(Completion_of_the_tool, Knows_its_states_events_and_kinds) {
    struct {
        std::vector<std::string> words;
        std::vector<std::string> offered;
    } const rows[]{
        {{"wait", "P"}, {"Post-Run", "Preparing", "PreparedSD"}},
        {{"wait", "--for", "1", "NM"}, {"NM-Controlled"}},
        {{"wait", "Running", "P"}, {}},
        {{"wait", "--for", ""}, {}},
        {{"wait", "--event", "client-l"}, {"client-left", "client-late"}},
        {{"wait", "--event", "ended", "--f"}, {"--for"}},
        {{"hold", ""}, {"ecu-alive", "com-alive", "cwu", "--help"}},
        {{"restart", "v"}, {"vm"}},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(completions(program, row.words), row.offered) << testing::PrintToString(row.words);
    }
    EXPECT_THAT(completions(program, {"wait", ""}), testing::IsSupersetOf({"Starting-up", "Resuming", "--event"}));
    EXPECT_EQ(completions(program, {"wait", "--event", ""}), event_words());
    for (auto const* const state : {"NM-Controlled", "\"NM Controlled\"", "nmcontrolled", "PreparedSD"}) {
        EXPECT_TRUE(accepts(std::string("wait ") + state)) << state;
    }
    EXPECT_FALSE(accepts("wait Sleeping"));
}

TEST_F(Completion, Leaves_another_command_to_the_user) {
    EXPECT_THAT(completions(program, {"greet", "--", "--n"}), IsEmpty());
}

TEST_F(Completion, Of_no_word_is_nothing) {
    EXPECT_THAT(completions(program, {}), IsEmpty());
}

}  // namespace
}  // namespace statectl
