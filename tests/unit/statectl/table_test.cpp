#include "tools/table.h"

#include "base/descriptor.h"
#include "tools/service_call.h"

#include <array>
#include <string>

#include <gmock/gmock.h>
#include <pty.h>
#include <stdlib.h>
#include <unistd.h>

namespace statectl {
namespace {

TEST(Table_of_cells, Has_columns_as_wide_as_their_widest_cell_whatever_script_that_is_in) {
    Table table({"NAME", "COUNT", "STATE"});
    table.add({"\"a\"", "7", "kOn"});
    table.add({"\"K\u00fcche\"", "12345678", "kOn"});
    table.add({"\"\u6771\u4eac\"", "1", "kOn"});
    table.add({"\"e\u0301\"", "-", ""});
    EXPECT_EQ(table.text(),
              "NAME     COUNT     STATE\n"
              "\"a\"             7  kOn\n"
              "\"K\u00fcche\"  12345678  kOn\n"
              "\"\u6771\u4eac\"          1  kOn\n"
              "\"e\u0301\"      -\n");
}

// What is printed where standard output is a terminal. Nothing else of this process goes there.
std::string printed_in_terminal(char const* type, char const* no_color, Mark mark) {
    int master = -1;
    int slave = -1;
    EXPECT_EQ(::openpty(&master, &slave, nullptr, nullptr, nullptr), 0);
    base::Descriptor const terminal(master);
    base::Descriptor const end(slave);
    ::setenv("TERM", type, 1);
    ::setenv("NO_COLOR", no_color, 1);
    std::fflush(stdout);
    base::Descriptor const before(::dup(STDOUT_FILENO));
    ::dup2(end.number(), STDOUT_FILENO);
    auto const text = marked("x", mark);
    ::dup2(before.number(), STDOUT_FILENO);
    ::unsetenv("NO_COLOR");
    return text;
}

TEST(Colours, Are_for_terminals_that_have_them_and_for_those_who_want_them) {
    EXPECT_EQ(printed_in_terminal("xterm", "", Mark::red), "\x1b[31mx\x1b[0m");
    EXPECT_EQ(printed_in_terminal("xterm", "", Mark::bold), "\x1b[1mx\x1b[0m");
    EXPECT_EQ(printed_in_terminal("xterm", "", Mark::plain), "x");
    EXPECT_EQ(printed_in_terminal("xterm", "1", Mark::red), "x");
    EXPECT_EQ(printed_in_terminal("dumb", "", Mark::red), "x");
    ::setenv("TERM", "xterm", 1);
    base::Descriptor const before(::dup(STDOUT_FILENO));
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe(ends.data()), 0);
    base::Descriptor const read_end(ends[0]);
    base::Descriptor const write_end(ends[1]);
    std::fflush(stdout);
    ::dup2(write_end.number(), STDOUT_FILENO);
    auto const text = marked("x", Mark::red);
    ::dup2(before.number(), STDOUT_FILENO);
    EXPECT_EQ(text, "x") << "a pipe";
}

TEST(What_is_not_offered, Is_told_with_what_is) {
    EXPECT_EQ(not_offered_text("3", {}), "\"3\" is not offered; nor is any other instance of this service");
    EXPECT_EQ(not_offered_text("3", {"1"}), "\"3\" is not offered; offered: \"1\"");
    EXPECT_EQ(not_offered_text("3", {"1", "2", "4"}), "\"3\" is not offered; offered: \"1\", \"2\" and \"4\"");
}

}  // namespace
}  // namespace statectl
