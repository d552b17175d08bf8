#include "bench/network/nm_state_machine.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace bench::network {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;

class Nm_state_machine_test : public testing::Test {
 protected:
    void pass(int count) {
        now += milliseconds(count);
        while (sut.next_deadline() && *sut.next_deadline() <= now) {
            sut.advance(now);
        }
    }
    void be_in_normal_operation() {
        sut.set_requested(true, now);
        pass(300);
        ASSERT_EQ(sut.state(), Nm_state::normal_operation);
    }
    void be_in_ready_sleep() {
        be_in_normal_operation();
        sut.message_sent(now);
        sut.set_requested(false, now);
        ASSERT_EQ(sut.state(), Nm_state::ready_sleep);
    }
    void be_in_prepare_bus_sleep() {
        be_in_ready_sleep();
        pass(400);
        ASSERT_EQ(sut.state(), Nm_state::prepare_bus_sleep);
    }

    Time now{std::chrono::hours(1)};
    std::vector<std::string> changes;
    Nm_state_machine sut{
        {milliseconds(100), milliseconds(300), milliseconds(400), milliseconds(200), milliseconds(300)},
        [this](Nm_state from, Nm_state to, Time /*when*/) {
            changes.push_back(std::string(name(from)) + " -> " + name(to));
        }};
};

TEST_F(Nm_state_machine_test, Begins_asleep_and_waits_for_nothing) {
    EXPECT_EQ(sut.state(), Nm_state::bus_sleep);
    EXPECT_FALSE(sut.next_deadline());
    EXPECT_FALSE(sut.sends());
    EXPECT_FALSE(sut.in_network_mode());
    pass(100'000);
    EXPECT_TRUE(changes.empty());
}

TEST_F(Nm_state_machine_test, A_request_leads_through_repeat_message_into_normal_operation) {
    sut.set_requested(true, now);
    EXPECT_TRUE(sut.sends());
    pass(299);
    EXPECT_EQ(sut.state(), Nm_state::repeat_message);
    pass(1);
    EXPECT_TRUE(sut.sends());
    EXPECT_THAT(changes, ElementsAre("bus sleep -> repeat message", "repeat message -> normal operation"));
}

TEST_F(Nm_state_machine_test, A_request_that_is_taken_back_in_repeat_message_leads_into_ready_sleep) {
    sut.set_requested(true, now);
    sut.set_requested(false, now);
    EXPECT_EQ(sut.state(), Nm_state::repeat_message);
    pass(300);
    EXPECT_EQ(sut.state(), Nm_state::ready_sleep);
    EXPECT_FALSE(sut.sends());
}

TEST_F(Nm_state_machine_test, A_message_wakes_a_sleeping_node_which_shows_itself_and_is_ready) {
    sut.message_received(false, now);
    pass(300);
    EXPECT_THAT(changes, ElementsAre("bus sleep -> repeat message", "repeat message -> ready sleep"));
}

TEST_F(Nm_state_machine_test, A_repeated_request_changes_nothing) {
    be_in_normal_operation();
    changes.clear();
    sut.set_requested(true, now);
    EXPECT_TRUE(changes.empty());
}

TEST_F(Nm_state_machine_test, A_release_leads_into_ready_sleep_and_a_request_back) {
    be_in_ready_sleep();
    sut.set_requested(true, now);
    EXPECT_EQ(sut.state(), Nm_state::normal_operation);
}

TEST_F(Nm_state_machine_test, Silence_leads_from_ready_sleep_over_prepare_bus_sleep_into_bus_sleep) {
    be_in_ready_sleep();
    pass(399);
    EXPECT_EQ(sut.state(), Nm_state::ready_sleep);
    pass(1);
    EXPECT_EQ(sut.state(), Nm_state::prepare_bus_sleep);
    pass(199);
    EXPECT_EQ(sut.state(), Nm_state::prepare_bus_sleep);
    pass(1);
    EXPECT_EQ(sut.state(), Nm_state::bus_sleep);
}

TEST_F(Nm_state_machine_test, Every_message_begins_the_time_out_anew) {
    be_in_ready_sleep();
    pass(399);
    sut.message_received(false, now);
    pass(399);
    EXPECT_EQ(sut.state(), Nm_state::ready_sleep);
    pass(1);
    EXPECT_EQ(sut.state(), Nm_state::prepare_bus_sleep);
}

TEST_F(Nm_state_machine_test, A_time_out_in_normal_operation_changes_nothing) {
    be_in_normal_operation();
    changes.clear();
    pass(10'000);
    EXPECT_TRUE(changes.empty());
}

TEST_F(Nm_state_machine_test, A_message_in_normal_operation_or_ready_sleep_changes_nothing) {
    be_in_normal_operation();
    sut.message_received(false, now);
    EXPECT_EQ(sut.state(), Nm_state::normal_operation);
    sut.set_requested(false, now);
    sut.message_received(false, now);
    EXPECT_EQ(sut.state(), Nm_state::ready_sleep);
}

TEST_F(Nm_state_machine_test, The_repeat_bit_makes_every_waking_node_show_itself) {
    be_in_normal_operation();
    sut.message_received(true, now);
    EXPECT_EQ(sut.state(), Nm_state::repeat_message);
    pass(300);
    EXPECT_EQ(sut.state(), Nm_state::normal_operation);
    sut.set_requested(false, now);
    sut.message_received(true, now);
    EXPECT_EQ(sut.state(), Nm_state::repeat_message);
    pass(300);
    EXPECT_EQ(sut.state(), Nm_state::ready_sleep);
}

TEST_F(Nm_state_machine_test, The_repeat_bit_does_not_prolong_repeat_message) {
    sut.set_requested(true, now);
    pass(200);
    sut.message_received(true, now);
    sut.want_repeat(now);
    pass(100);
    EXPECT_EQ(sut.state(), Nm_state::normal_operation);
}

TEST_F(Nm_state_machine_test, A_wish_to_repeat_leads_from_everywhere_into_repeat_message) {
    sut.want_repeat(now);
    EXPECT_EQ(sut.state(), Nm_state::repeat_message);
    pass(300);
    sut.want_repeat(now);
    EXPECT_EQ(sut.state(), Nm_state::repeat_message);
}

TEST_F(Nm_state_machine_test, A_request_and_a_message_lead_back_from_prepare_bus_sleep) {
    be_in_prepare_bus_sleep();
    sut.message_received(false, now);
    EXPECT_EQ(sut.state(), Nm_state::repeat_message);
    pass(400);
    ASSERT_EQ(sut.state(), Nm_state::prepare_bus_sleep);
    sut.set_requested(true, now);
    EXPECT_EQ(sut.state(), Nm_state::repeat_message);
}

TEST_F(Nm_state_machine_test, The_time_out_begins_with_the_network_however_long_it_slept) {
    sut.set_requested(true, now);
    sut.set_requested(false, now);
    pass(300 + 100 - 1);
    EXPECT_EQ(sut.state(), Nm_state::ready_sleep);
    pass(1);
    EXPECT_EQ(sut.state(), Nm_state::prepare_bus_sleep);
}

TEST_F(Nm_state_machine_test, Deadlines_act_one_at_a_time_and_as_of_their_own_time) {
    be_in_ready_sleep();
    now += milliseconds(500);
    sut.advance(now);
    EXPECT_EQ(sut.state(), Nm_state::prepare_bus_sleep);
    EXPECT_EQ(*sut.next_deadline(), now + milliseconds(100));
}

TEST(Nm_state_test, Names_are_those_of_the_protocol) {
    EXPECT_STREQ(name(Nm_state::bus_sleep), "bus sleep");
    EXPECT_STREQ(name(Nm_state::prepare_bus_sleep), "prepare bus sleep");
    EXPECT_STREQ(name(Nm_state::repeat_message), "repeat message");
    EXPECT_STREQ(name(Nm_state::normal_operation), "normal operation");
    EXPECT_STREQ(name(Nm_state::ready_sleep), "ready sleep");
}

}  // namespace
}  // namespace bench::network
