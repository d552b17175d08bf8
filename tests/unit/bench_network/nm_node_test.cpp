#include "nm_fixture.h"

namespace bench::network {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Nm_node_test : public Nm_fixture {};

TEST_F(Nm_node_test, Sends_at_once_when_it_is_requested_and_then_every_cycle) {
    sut.request({0, 1}, now);
    EXPECT_EQ(environment.sent.size(), 1U);
    pass(99);
    EXPECT_EQ(environment.sent.size(), 1U);
    pass(1);
    EXPECT_EQ(environment.sent.size(), 2U);
    pass(800);
    EXPECT_EQ(environment.sent.size(), 10U);
    EXPECT_EQ(sut.state(), Nm_state::normal_operation);
}

TEST_F(Nm_node_test, A_message_that_is_late_is_sent_once) {
    sut.request({1}, now);
    environment.sent.clear();
    jump(5'000);
    EXPECT_EQ(environment.sent.size(), 1U);
    EXPECT_EQ(*sut.next_deadline(), now + std::chrono::milliseconds(100));
}

TEST_F(Nm_node_test, The_active_wakeup_bit_tells_who_woke_the_network_until_it_sleeps_again) {
    sut.request({1}, now);
    EXPECT_TRUE(environment.sent.back().has(Control_bit::active_wakeup));
    pass(100);
    EXPECT_TRUE(environment.sent.back().has(Control_bit::active_wakeup));
    sut.release({1}, now);
    pass(600);
    ASSERT_EQ(sut.state(), Nm_state::prepare_bus_sleep);
    hear({0, 0});
    EXPECT_FALSE(environment.sent.back().has(Control_bit::active_wakeup));
}

TEST_F(Nm_node_test, Bits_behind_the_networks_length_are_left_out) {
    sut.request({0, 0, 0xff}, now);
    EXPECT_THAT(sut.requests(), ElementsAre(0, 0));
    EXPECT_EQ(sut.state(), Nm_state::bus_sleep);
}

TEST_F(Nm_node_test, The_network_state_is_told_on_every_change_and_only_then) {
    sut.request({1}, now);
    EXPECT_THAT(take_doings(), ElementsAre("[01 00]", "repeat message"));
    sut.request({1}, now);
    EXPECT_THAT(take_doings(), IsEmpty());
    sut.request({2}, now);
    EXPECT_THAT(take_doings(), ElementsAre("[03 00]"));
    sut.release({1}, now);
    EXPECT_THAT(take_doings(), ElementsAre("[02 00]"));
}

TEST_F(Nm_node_test, Rest_is_told_twice_when_it_begins_and_when_the_bus_sleeps) {
    sut.request({1}, now);
    pass(300);
    take_doings();
    sut.release({1}, now);
    EXPECT_THAT(take_doings(), ElementsAre("[00 00]", "ready sleep"));
    pass(400);
    EXPECT_THAT(take_doings(), ElementsAre("prepare bus sleep"));
    pass(200);
    EXPECT_THAT(take_doings(), ElementsAre("bus sleep", "[00 00]"));
}

TEST_F(Nm_node_test, A_wish_to_repeat_is_sent_while_the_node_shows_itself) {
    sut.want_repeat(now);
    EXPECT_TRUE(environment.sent.back().has(Control_bit::repeat_message));
    sut.request({1}, now);
    pass(300);
    ASSERT_EQ(sut.state(), Nm_state::normal_operation);
    pass(100);
    EXPECT_FALSE(environment.sent.back().has(Control_bit::repeat_message));
}

TEST_F(Nm_node_test, Time_that_nobody_told_is_made_up_for_in_order) {
    sut.request({1}, now);
    pass(300);
    sut.release({1}, now);
    take_doings();
    jump(60'000);
    EXPECT_THAT(take_doings(), ElementsAre("prepare bus sleep", "bus sleep", "[00 00]"));
}

}  // namespace
}  // namespace bench::network
