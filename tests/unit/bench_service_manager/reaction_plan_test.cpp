#include "bench/service_manager/reaction_plan.h"

#include <gtest/gtest.h>

namespace bench::service_manager {
namespace {

Reaction failing_with(std::string const& error) {
    Reaction reaction;
    reaction.error = error;
    return reaction;
}

TEST(Reaction_plan_test, Without_a_plan_a_call_goes_well) {
    Reaction_plan sut;
    Reaction const reaction = sut.take("StartUnit", "a.target");
    EXPECT_TRUE(reaction.error.empty());
    EXPECT_FALSE(reaction.silent);
    EXPECT_EQ(reaction.delay.count(), 0);
    EXPECT_EQ(reaction.job_result, "done");
}

TEST(Reaction_plan_test, A_reaction_fits_its_method_and_its_unit) {
    Reaction_plan sut;
    sut.add("StartUnit", "a.target", failing_with("x.y"), 1);
    EXPECT_TRUE(sut.take("StopUnit", "a.target").error.empty());
    EXPECT_TRUE(sut.take("StartUnit", "b.target").error.empty());
    EXPECT_EQ(sut.take("StartUnit", "a.target").error, "x.y");
    EXPECT_TRUE(sut.take("StartUnit", "a.target").error.empty());
}

TEST(Reaction_plan_test, A_star_fits_any) {
    Reaction_plan sut;
    sut.add("*", "*", failing_with("x.y"), 2);
    EXPECT_EQ(sut.take("GetUnit", "").error, "x.y");
    EXPECT_EQ(sut.take("StartUnit", "a.target").error, "x.y");
    EXPECT_TRUE(sut.take("StartUnit", "a.target").error.empty());
}

TEST(Reaction_plan_test, The_oldest_that_fits_is_used_first) {
    Reaction_plan sut;
    sut.add("StartUnit", "*", failing_with("first.one"), 1);
    sut.add("StartUnit", "a.target", failing_with("second.one"), 1);
    EXPECT_EQ(sut.take("StartUnit", "a.target").error, "first.one");
    EXPECT_EQ(sut.take("StartUnit", "a.target").error, "second.one");
}

TEST(Reaction_plan_test, Clearing_forgets_all) {
    Reaction_plan sut;
    sut.add("*", "*", failing_with("x.y"), 100);
    sut.clear();
    EXPECT_TRUE(sut.take("StartUnit", "a.target").error.empty());
}

}  // namespace
}  // namespace bench::service_manager
