#include "statectl.h"

#include <string>

#include <gmock/gmock.h>

namespace statectl {
namespace {

/// What bash offers for a command line whose last word is being typed, one word a line.
std::string offered(std::string const& words, std::string const& index) {
    auto const script = std::string(". " COMPLETION_SCRIPT "; COMP_WORDS=(" STATECTL " ") + words +
                        "); COMP_CWORD=" + index +
                        "; _ap_statectl; printf '%s\\n' \"${COMPREPLY[@]}\"; complete -p ap_statectl >/dev/null";
    return run_shell(script).output;
}

TEST(Completion, In_bash_offers_the_subcommands) {
    EXPECT_EQ(offered("ecu", "1"), "ecu-alive\n");
}

TEST(Completion, In_bash_offers_the_options_of_a_subcommand) {
    EXPECT_EQ(offered("client --s", "2"), "--state\n--status\n--silent\n--socket\n");
}

TEST(Completion, In_bash_offers_states_events_and_kinds) {
    EXPECT_EQ(offered("wait NM", "2"), "NM-Controlled\n");
    EXPECT_EQ(offered("wait --event client-l", "3"), "client-left\nclient-late\n");
    EXPECT_EQ(offered("hold c", "2"), "com-alive\ncwu\n");
}

TEST(Completion, In_bash_leaves_values_alone) {
    EXPECT_EQ(offered("client --name ''", "3"), "\n");
}

}  // namespace
}  // namespace statectl
