#include "bench/json_lines/arguments.h"

#include <cerrno>
#include <limits>

#include <gtest/gtest.h>

namespace bench {
namespace {

using nlohmann::json;

TEST(Arguments_test, A_member_of_the_wrong_type_is_an_error) {
    json const command{{"a", 1}, {"b", "1"}, {"c", 1}, {"d", "x"}, {"e", json::array({1})}, {"f", 1.0}, {"g", true}};
    Arguments sut(command);
    EXPECT_THROW(sut.text("a"), Command_error);
    EXPECT_THROW(sut.number("b", 0, 10), Command_error);
    EXPECT_THROW(sut.flag_or("c", false), Command_error);
    EXPECT_THROW(sut.optional_texts("d"), Command_error);
    EXPECT_THROW(sut.optional_texts("e"), Command_error);
    EXPECT_THROW(sut.number("f", 0, 10), Command_error);
    EXPECT_THROW(sut.number("g", 0, 10), Command_error);
}

TEST(Arguments_test, A_number_must_lie_within_its_bounds_both_included) {
    json const command{
        {"low", -1}, {"lowest", 0}, {"highest", 10}, {"high", 11}, {"huge", std::numeric_limits<std::uint64_t>::max()}};
    Arguments sut(command);
    EXPECT_THROW(sut.number("low", 0, 10), Command_error);
    EXPECT_EQ(sut.number("lowest", 0, 10), 0);
    EXPECT_EQ(sut.number("highest", 0, 10), 10);
    EXPECT_THROW(sut.number("high", 0, 10), Command_error);
    EXPECT_THROW(sut.number("huge", -10, 10), Command_error);
}

TEST(Arguments_test, A_system_error_is_given_by_name_or_number) {
    json const command{{"a", "EIO"}, {"b", ENODEV}, {"c", "EIEIO"}, {"d", 0}, {"e", 100000}};
    Arguments sut(command);
    EXPECT_EQ(sut.optional_errno("a"), EIO);
    EXPECT_EQ(sut.optional_errno("b"), ENODEV);
    EXPECT_THROW(sut.optional_errno("c"), Command_error);
    EXPECT_THROW(sut.optional_errno("d"), Command_error);
    EXPECT_THROW(sut.optional_errno("e"), Command_error);
}

TEST(Arguments_test, A_member_that_nobody_took_is_an_error) {
    json const command{{"do", "press"}, {"id", 1}, {"devise", "event0"}};
    Arguments sut(command);
    EXPECT_THROW(sut.end(), Command_error);
    sut.text("devise");
    EXPECT_NO_THROW(sut.end());
}

}  // namespace
}  // namespace bench
