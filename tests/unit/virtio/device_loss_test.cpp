#include "virtio_fixture.h"

#include <cerrno>

namespace ximo::ap::statemanager::virtio {
namespace {

class Device_loss : public Keyboard_fixture {};

TEST_F(Device_loss, A_device_that_hangs_up_is_closed_and_not_waited_for_any_more) {
    int const descriptor = system.descriptor_of("event0");
    system.hang_up("event0");

    sut->check_for_commands(100);
    sut->check_for_commands(100);

    EXPECT_THAT(system.closes(), ElementsAre(descriptor));
    EXPECT_THAT(system.waits(), ElementsAre(100));
    EXPECT_THAT(log.at_least(LogLevel::kInfo), IsEmpty());
}

TEST_F(Device_loss, Either_of_error_and_hang_up_is_enough) {
    for (std::uint32_t const events : {std::uint32_t{EPOLLERR}, std::uint32_t{EPOLLHUP}}) {
        Fake_input_system one;
        one.add_device("event0");
        Virtio_interface reader(one);
        ASSERT_TRUE(reader.init("/dev/input"));
        int const descriptor = one.descriptor_of("event0");
        one.raise("event0", events);

        reader.check_for_commands(0);

        EXPECT_FALSE(one.is_open(descriptor));
    }
}

TEST_F(Device_loss, Queued_commands_are_still_given) {
    press(KEY_R);
    press(KEY_P);
    system.hang_up("event0");

    EXPECT_THAT(take_all(), ElementsAre(Virtio_command::run, Virtio_command::prepare_sd));
}

TEST_F(Device_loss, Input_that_is_announced_together_with_the_hang_up_is_read_first) {
    system.send("event0", EV_KEY, KEY_R, 1);
    system.raise("event0", std::uint32_t{EPOLLIN} | std::uint32_t{EPOLLHUP} | std::uint32_t{EPOLLERR});

    EXPECT_EQ(sut->get_command(0), Virtio_command::run);

    EXPECT_THAT(system.closes(), IsEmpty());
}

TEST_F(Device_loss, A_close_that_fails_is_told_with_its_reason_and_the_device_is_gone_all_the_same) {
    system.fail_next_close_of(system.descriptor_of("event0"), EIO);
    system.hang_up("event0");

    sut->check_for_commands(0);

    EXPECT_THAT(log.at_least(LogLevel::kInfo),
                ElementsAre(logged(LogLevel::kError, "Failed to close event file descriptor! ", "Input/output error")));
    sut->check_for_commands(0);
    EXPECT_THAT(system.waits(), ElementsAre(0));
}

TEST_F(Virtio_fixture, The_devices_that_remain_go_on) {
    system.add_device("event0");
    system.add_device("event1");
    ASSERT_TRUE(sut->init("/dev/input"));
    system.hang_up("event0");
    sut->check_for_commands(0);

    system.press("event1", KEY_S);

    EXPECT_EQ(sut->get_command(0), Virtio_command::nm_controlled_prepare_sd);
}

TEST_F(Virtio_fixture, A_hang_up_and_a_press_in_one_wait_are_both_handled) {
    system.add_device("event0");
    system.add_device("event1");
    ASSERT_TRUE(sut->init("/dev/input"));
    system.hang_up("event0");
    system.press("event1", KEY_S);

    EXPECT_EQ(sut->get_command(0), Virtio_command::nm_controlled_prepare_sd);

    EXPECT_EQ(system.descriptor_of("event0"), -1);
}

TEST_F(Virtio_fixture, The_count_follows_also_for_devices_that_no_slot_holds) {
    for (int i = 0; i < 6; ++i) {
        system.add_device("event" + std::to_string(i));
    }
    ASSERT_TRUE(sut->init("/dev/input"));
    for (int i = 0; i < 6; ++i) {
        system.hang_up("event" + std::to_string(i));
    }

    sut->check_for_commands(7);  // room for five
    sut->check_for_commands(7);  // the sixth
    sut->check_for_commands(7);  // nobody is left

    EXPECT_THAT(system.waits(), ElementsAre(7, 7));
    EXPECT_EQ(system.closes().size(), 6U);
}

TEST_F(Device_loss, A_reader_that_lost_all_devices_counts_as_started) {
    system.hang_up("event0");
    sut->check_for_commands(0);

    EXPECT_FALSE(sut->init("/dev/input"));

    EXPECT_THAT(log.messages().back(), logged(LogLevel::kVerbose, "VirtIO interface already initialized"));
}

}  // namespace
}  // namespace ximo::ap::statemanager::virtio
