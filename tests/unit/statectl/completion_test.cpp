#include "tools/completion.h"

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
    EXPECT_THAT(completions(program, {"greet", ""}), ElementsAre("--help", "--name", "--never"));
    EXPECT_THAT(completions(program, {"greet", "--never", "--na"}), ElementsAre("--name"));
}

TEST_F(Completion, Leaves_values_to_the_user) {
    EXPECT_THAT(completions(program, {"greet", "--name", ""}), IsEmpty());
    EXPECT_THAT(completions(program, {"greet", "--name", "me", "--ne"}), ElementsAre("--never"));
}

TEST_F(Completion, Leaves_another_command_to_the_user) {
    EXPECT_THAT(completions(program, {"greet", "--", "--n"}), IsEmpty());
}

TEST_F(Completion, Of_no_word_is_nothing) {
    EXPECT_THAT(completions(program, {}), IsEmpty());
}

}  // namespace
}  // namespace statectl
