#include "virtio_fixture.h"

#include <cerrno>

namespace ximo::ap::statemanager::virtio {
namespace {

class End_of_life : public Virtio_fixture {};

Log_message close_told(char const* reason) {
    return logged(LogLevel::kError, "Failed to close event file descriptor! ", reason);
}

TEST_F(End_of_life, A_reader_that_was_never_started_closes_five_empty_slots_and_says_so) {
    sut.reset();

    EXPECT_THAT(system.closes(), ElementsAre(-1, -1, -1, -1, -1));
    EXPECT_EQ(log.messages(), std::vector<Log_message>(5, close_told("Bad file descriptor")));
}

TEST_F(End_of_life, The_first_device_is_in_the_second_slot_and_its_good_close_is_told_as_well) {
    system.add_device("event0");
    system.add_device("event1");
    system.use_descriptor("event0", 20);
    system.use_descriptor("event1", 21);
    ASSERT_TRUE(sut->init("/dev/input"));
    log.clear();

    sut.reset();

    ASSERT_EQ(system.closes().size(), 6U);
    EXPECT_THAT(std::vector<int>(system.closes().begin(), system.closes().begin() + 5),
                ElementsAre(-1, 20, 21, -1, -1));
    EXPECT_THAT(log.messages(),
                ElementsAre(close_told("Bad file descriptor"), close_told("Success"), close_told("Success"),
                            close_told("Bad file descriptor"), close_told("Bad file descriptor")));
    EXPECT_EQ(system.open_count(), 0U);
}

TEST_F(End_of_life, Descriptor_0_that_closes_and_descriptor_1_that_does_not_are_the_silent_ones) {
    system.add_device("event0");
    system.add_device("event1");
    system.use_descriptor("event0", 0);
    system.use_descriptor("event1", 1);
    system.fail_next_close_of(1, EIO);
    ASSERT_TRUE(sut->init("/dev/input"));
    log.clear();

    sut.reset();

    EXPECT_EQ(log.messages(), std::vector<Log_message>(3, close_told("Bad file descriptor")));
}

TEST_F(End_of_life, A_close_that_fails_is_told_with_its_reason) {
    system.add_device("event0");
    system.use_descriptor("event0", 20);
    system.fail_next_close_of(20, EIO);
    ASSERT_TRUE(sut->init("/dev/input"));
    log.clear();

    sut.reset();

    EXPECT_THAT(log.messages(), Contains(close_told("Input/output error")).Times(1));
}

TEST_F(End_of_life, The_epoll_descriptor_is_closed_last_and_silently) {
    system.add_device("event0");
    ASSERT_TRUE(sut->init("/dev/input"));

    sut.reset();

    EXPECT_EQ(system.closes().size(), 6U);
    EXPECT_EQ(system.closes().back(), 101);  // the fake's first descriptor
    EXPECT_EQ(system.open_count(), 0U);
}

TEST_F(End_of_life, An_epoll_descriptor_that_does_not_close_is_told) {
    system.add_device("event0");
    ASSERT_TRUE(sut->init("/dev/input"));
    system.fail_next_close_of(101, EIO);  // the fake's first descriptor
    log.clear();

    sut.reset();

    EXPECT_THAT(log.messages().back(),
                logged(LogLevel::kError, "Failed to close epoll file descriptor! ", "Input/output error"));
}

TEST_F(End_of_life, A_device_that_hung_up_is_not_closed_again) {
    system.add_device("event0");
    system.use_descriptor("event0", 20);
    ASSERT_TRUE(sut->init("/dev/input"));
    system.hang_up("event0");
    sut->check_for_commands(0);

    sut.reset();

    EXPECT_THAT(system.closes(), ElementsAre(20, -1, -1, -1, -1, -1, 101));
}

TEST_F(End_of_life, Slots_hold_the_first_four_devices) {
    for (int i = 0; i < 6; ++i) {
        system.add_device("event" + std::to_string(i));
        system.use_descriptor("event" + std::to_string(i), 20 + i);
    }
    ASSERT_TRUE(sut->init("/dev/input"));

    sut.reset();

    EXPECT_THAT(system.closes(), ElementsAre(-1, 20, 21, 22, 23, 101));
}

}  // namespace
}  // namespace ximo::ap::statemanager::virtio
