#include "tools/table.h"

#include "tools/service_call.h"

#include <string>

#include <gmock/gmock.h>

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

TEST(Colours, Are_for_terminals_that_have_them_and_for_those_who_want_them) {
    EXPECT_TRUE(allows_colours(true, "xterm", nullptr));
    EXPECT_TRUE(allows_colours(true, "xterm", ""));
    EXPECT_FALSE(allows_colours(true, "xterm", "1"));
    EXPECT_FALSE(allows_colours(true, "dumb", nullptr));
    EXPECT_FALSE(allows_colours(true, "", nullptr));
    EXPECT_FALSE(allows_colours(true, nullptr, nullptr));
    EXPECT_FALSE(allows_colours(false, "xterm", nullptr));
    EXPECT_EQ(marked("x", Mark::red, true), "\x1b[31mx\x1b[0m");
    EXPECT_EQ(marked("x", Mark::bold, true), "\x1b[1mx\x1b[0m");
    EXPECT_EQ(marked("x", Mark::plain, true), "x");
    EXPECT_EQ(marked("x", Mark::red, false), "x");
}

TEST(What_is_not_offered, Is_told_with_what_is) {
    EXPECT_EQ(not_offered_text("3", {}), "\"3\" is not offered; nor is any other instance of this service");
    EXPECT_EQ(not_offered_text("3", {"1"}), "\"3\" is not offered; offered: \"1\"");
    EXPECT_EQ(not_offered_text("2", {"1", "2"}), "\"2\" was offered too late; a longer --wait finds it");
    EXPECT_EQ(not_offered_text("3", {"1", "2", "4"}), "\"3\" is not offered; offered: \"1\", \"2\" and \"4\"");
}

}  // namespace
}  // namespace statectl
