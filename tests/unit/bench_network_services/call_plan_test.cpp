#include "bench/network/call_plan.h"

#include <gtest/gtest.h>

namespace bench::network {
namespace {

Call_reaction refusal() {
    Call_reaction reaction;
    reaction.refuse = true;
    return reaction;
}

Call_reaction slowness(int milliseconds) {
    Call_reaction reaction;
    reaction.delay = std::chrono::milliseconds(milliseconds);
    return reaction;
}

TEST(Call_plan_test, Without_a_plan_a_call_goes_well) {
    Call_plan sut;
    auto const reaction = sut.take("SetUserData");
    EXPECT_FALSE(reaction.refuse);
    EXPECT_FALSE(reaction.silent);
    EXPECT_EQ(reaction.delay.count(), 0);
}

TEST(Call_plan_test, A_reaction_counts_for_its_method_and_so_many_calls) {
    Call_plan sut;
    sut.add("SetUserData", refusal(), 2);
    EXPECT_FALSE(sut.take("GetUserData").refuse);
    EXPECT_TRUE(sut.take("SetUserData").refuse);
    EXPECT_TRUE(sut.take("SetUserData").refuse);
    EXPECT_FALSE(sut.take("SetUserData").refuse);
}

TEST(Call_plan_test, A_star_fits_any_method_and_the_oldest_that_fits_is_used) {
    Call_plan sut;
    sut.add("SetUserData", slowness(1), 1);
    sut.add("*", slowness(2), 2);
    sut.add("SetUserData", slowness(3), 1);
    EXPECT_EQ(sut.take("RequestNetwork").delay.count(), 2);
    EXPECT_EQ(sut.take("SetUserData").delay.count(), 1);
    EXPECT_EQ(sut.take("SetUserData").delay.count(), 2);
    EXPECT_EQ(sut.take("SetUserData").delay.count(), 3);
}

TEST(Call_plan_test, What_is_planned_can_be_forgotten) {
    Call_plan sut;
    sut.add("*", refusal(), 5);
    sut.clear();
    EXPECT_FALSE(sut.take("SetUserData").refuse);
}

}  // namespace
}  // namespace bench::network
