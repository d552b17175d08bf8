#include "bench/service_manager/manager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace bench::service_manager {
namespace {

class Manager_test : public testing::Test {
 protected:
    Manager_test() {
        startup = &sut.units().add("MachineState-Startup.target", "active");
        running = &sut.units().add("MachineState-Running.target", "inactive");
        other = &sut.units().add("Other-Running.target", "active");
    }
    Manager sut;
    Unit* startup = nullptr;
    Unit* running = nullptr;
    Unit* other = nullptr;
};

TEST_F(Manager_test, A_unit_is_on_its_way_while_its_job_lasts) {
    Job const job = sut.begin(*running, true, "done");
    EXPECT_EQ(running->active, "activating");
    EXPECT_EQ(startup->active, "active");
    EXPECT_EQ(job.unit, running);
}

TEST_F(Manager_test, A_started_target_makes_the_others_of_its_group_inactive) {
    auto const changed = sut.end(sut.begin(*running, true, "done"));
    EXPECT_EQ(running->active, "active");
    EXPECT_EQ(startup->active, "inactive");
    EXPECT_EQ(other->active, "active");
    EXPECT_THAT(changed, testing::ElementsAre(running, startup));
}

TEST_F(Manager_test, Starting_what_is_active_changes_nothing) {
    Job const job = sut.begin(*startup, true, "done");
    EXPECT_EQ(startup->active, "active");
    EXPECT_TRUE(sut.end(job).empty());
}

TEST_F(Manager_test, A_job_that_fails_leaves_its_target_failed_and_the_others_as_they_were) {
    auto const changed = sut.end(sut.begin(*running, true, "failed"));
    EXPECT_EQ(running->active, "failed");
    EXPECT_EQ(startup->active, "active");
    EXPECT_THAT(changed, testing::ElementsAre(running));
}

TEST_F(Manager_test, A_stopped_unit_is_inactive) {
    Job const job = sut.begin(*startup, false, "done");
    EXPECT_EQ(startup->active, "deactivating");
    sut.end(job);
    EXPECT_EQ(startup->active, "inactive");
}

TEST_F(Manager_test, A_stop_that_fails_leaves_the_unit_active) {
    sut.end(sut.begin(*startup, false, "timeout"));
    EXPECT_EQ(startup->active, "active");
}

TEST_F(Manager_test, Jobs_are_numbered_from_1_and_load_their_unit) {
    Unit& unloaded = sut.units().add("single.target", "inactive");
    EXPECT_EQ(sut.begin(unloaded, true, "done").id, 1U);
    EXPECT_EQ(sut.begin(*running, true, "done").id, 2U);
    EXPECT_TRUE(unloaded.loaded);
}

}  // namespace
}  // namespace bench::service_manager
