#include "bench/service_manager/units.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace bench::service_manager {
namespace {

std::vector<std::string> names(std::vector<Unit const*> const& units) {
    std::vector<std::string> result;
    for (Unit const* const unit : units) {
        result.push_back(unit->name);
    }
    return result;
}

TEST(Units_test, A_target_belongs_to_the_group_before_its_last_dash) {
    EXPECT_EQ(group_of("MachineState-Running.target"), "MachineState");
    EXPECT_EQ(group_of("My-Group-Off.target"), "My-Group");
    EXPECT_EQ(group_of("multi.target"), "");
    EXPECT_EQ(group_of("a-b.service"), "");
    EXPECT_EQ(group_of(".target"), "");
}

TEST(Units_test, A_unit_that_was_not_added_is_not_there) {
    Units sut;
    EXPECT_EQ(sut.find("a.target"), nullptr);
    EXPECT_TRUE(sut.matching({}, {}).empty());
}

TEST(Units_test, An_inactive_unit_is_not_loaded_and_an_active_one_is) {
    Units sut;
    EXPECT_FALSE(sut.add("a.target", "inactive").loaded);
    EXPECT_TRUE(sut.add("b.target", "active").loaded);
}

TEST(Units_test, Loading_a_target_loads_its_group_and_no_other) {
    Units sut;
    sut.add("G-A.target", "inactive");
    sut.add("H-A.target", "inactive");
    sut.add("G-B.target", "active");
    EXPECT_TRUE(sut.find("G-A.target")->loaded);
    EXPECT_FALSE(sut.find("H-A.target")->loaded);
    EXPECT_TRUE(sut.add("G-C.target", "inactive").loaded);
}

TEST(Units_test, Adding_a_unit_again_changes_its_state) {
    Units sut;
    sut.add("a.target", "inactive");
    sut.add("a.target", "failed");
    EXPECT_EQ(sut.all().size(), 1U);
    EXPECT_EQ(sut.find("a.target")->active, "failed");
}

TEST(Units_test, Targets_of_one_group_conflict_with_each_other_only) {
    Units sut;
    Unit const& first = sut.add("G-A.target", "inactive");
    sut.add("G-B.target", "inactive");
    sut.add("H-B.target", "inactive");
    Unit const& single = sut.add("single.target", "inactive");
    EXPECT_THAT(sut.conflicting(first), testing::ElementsAre(sut.find("G-B.target")));
    EXPECT_TRUE(sut.conflicting(single).empty());
}

TEST(Units_test, Loaded_units_match_by_state_and_pattern) {
    Units sut;
    sut.add("G-A.target", "active");
    sut.add("G-B.target", "inactive");
    sut.add("H-A.target", "active");
    sut.add("I-A.target", "inactive");
    EXPECT_THAT(names(sut.matching({}, {})), testing::ElementsAre("G-A.target", "G-B.target", "H-A.target"));
    EXPECT_THAT(names(sut.matching({}, {"G-*.target"})), testing::ElementsAre("G-A.target", "G-B.target"));
    EXPECT_THAT(names(sut.matching({"active"}, {"G-*.target"})), testing::ElementsAre("G-A.target"));
    EXPECT_THAT(names(sut.matching({"active", "inactive"}, {"H-*", "G-B*"})),
                testing::ElementsAre("G-B.target", "H-A.target"));
    EXPECT_THAT(names(sut.matching({"dead"}, {})), testing::ElementsAre("G-B.target"));
    EXPECT_THAT(names(sut.matching({"loaded"}, {"I-*"})), testing::IsEmpty());
}

}  // namespace
}  // namespace bench::service_manager
