#include "bench/json_lines/plan.h"

#include <gmock/gmock.h>

namespace bench {
namespace {

using Calls = Plan<int, std::string, std::string>;

TEST(Plan_test, The_oldest_that_fits_is_used_up_and_then_all_is_as_usual) {
    Calls sut;
    sut.add("Start", "*", 1, 2);
    sut.add("Start", "a", 2, 1);
    sut.add("*", "*", 3, 1);
    EXPECT_EQ(sut.take("Stop", "a"), 3);
    EXPECT_EQ(sut.take("Start", "a"), 1);
    EXPECT_EQ(sut.take("Start", "b"), 1);
    EXPECT_EQ(sut.take("Start", "b"), 0);
    EXPECT_EQ(sut.take("Start", "a"), 2);
    EXPECT_EQ(sut.take("Start", "a"), 0);
}

TEST(Plan_test, What_is_to_happen_no_more_does_not) {
    Plan<int, char> sut;
    sut.add('r', 1, 0);
    EXPECT_FALSE(sut.has('r'));
    sut.add('r', 1, 5);
    EXPECT_TRUE(sut.has('r'));
    EXPECT_FALSE(sut.has('w'));
    sut.clear();
    EXPECT_FALSE(sut.has('r'));
}

}  // namespace
}  // namespace bench
