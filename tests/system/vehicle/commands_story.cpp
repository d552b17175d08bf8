#include "story.h"

namespace bench::vehicle {
namespace {

using testing::Contains;
using testing::ElementsAre;

class Commands : public Story {};

TEST_F(Commands, Of_network_management_wait_and_block_the_others_where_it_is_not_used) {
    start_and_run();
    machine->press("n");
    ASSERT_TRUE(logs("New command received NmControlled"));
    machine->press("p");
    ASSERT_TRUE(logs("New command received PrepareSD"));
    machine->watch(std::chrono::milliseconds(300));
    EXPECT_THAT(texts(Kind::state_word), ElementsAre("startingup", "running"));
}

TEST_F(Commands, Give_way_to_the_power_key) {
    start_and_run();
    machine->press("n");
    ASSERT_TRUE(logs("New command received NmControlled"));
    machine->press("power");
    EXPECT_TRUE(ends_with(0));
    EXPECT_THAT(texts(Kind::state_word), Contains("shuttingdown"));
}

TEST_F(Commands, May_come_as_power_management_events) {
    start_and_run();
    machine->hypervisor().command({{"do", "press"}, {"key", "power"}, {"type", "EV_PWR"}});
    EXPECT_TRUE(ends_with(0));
    EXPECT_THAT(texts(Kind::state_word), Contains("shuttingdown"));
}

TEST_F(Commands, Come_from_every_device) {
    options.devices = 6;
    start_and_run();
    machine->hypervisor().command({{"do", "press"}, {"device", "event5"}, {"key", "p"}});
    EXPECT_TRUE(sees(Kind::state_word, "prepared4sd"));
}

TEST_F(Commands, That_are_none_are_logged_and_ignored) {
    start_and_run();
    machine->press("x");
    EXPECT_TRUE(logs("Unsupported command type received! Type["));
    machine->watch(std::chrono::milliseconds(200));
    EXPECT_THAT(texts(Kind::state_word), ElementsAre("startingup", "running"));
}

}  // namespace
}  // namespace bench::vehicle
