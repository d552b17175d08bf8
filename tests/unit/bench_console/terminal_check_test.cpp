#include "bench/console/terminal_check.h"

#include <cstdlib>

#include <gmock/gmock.h>

namespace bench::console {
namespace {

using testing::HasSubstr;

std::string why_not_on(char const* terminal) {
    ::setenv("TERM", terminal, 1);
    return why_no_console();
}

TEST(Terminal_check, Has_nothing_to_say_of_a_usual_terminal) {
    EXPECT_EQ(why_not_on("xterm"), "");
    EXPECT_EQ(why_not_on("linux"), "") << "also when asked again";
}

TEST(Terminal_check, Refuses_one_that_only_writes_line_after_line) {
    EXPECT_EQ(why_not_on("dumb"),
              "the terminal (TERM is \"dumb\") can't place text on its screen; set TERM to what it is, or use --tour");
}

TEST(Terminal_check, Refuses_one_that_nobody_knows) {
    EXPECT_THAT(why_not_on("no-such-terminal"), HasSubstr("(TERM is \"no-such-terminal\") is not known"));
}

TEST(Terminal_check, Says_when_nobody_tells_which_it_is) {
    EXPECT_THAT(why_not_on(""), HasSubstr("(TERM is not set) is not known"));
    ::unsetenv("TERM");
    EXPECT_THAT(why_no_console(), HasSubstr("(TERM is not set) is not known"));
}

}  // namespace
}  // namespace bench::console
