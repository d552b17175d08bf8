#include "virtio_fixture.h"

#include <algorithm>
#include <cerrno>
#include <string>

namespace ximo::ap::statemanager::virtio {
namespace {

class Device_discovery : public Virtio_fixture {};

Log_message no_device_found() {
    return logged(LogLevel::kError, "No key event input device found that supports both EV_KEY and EV_MSC");
}

TEST_F(Device_discovery, One_keyboard_is_found_and_told_step_by_step) {
    system.add_device("event0");

    EXPECT_TRUE(sut->init("/dev/input"));

    EXPECT_THAT(system.directories(), ElementsAre("/dev/input"));
    EXPECT_THAT(log.messages(),
                ElementsAre(logged(LogLevel::kVerbose, "Initialization of VirtIO"),
                            logged(LogLevel::kInfo, "Adding devices from directory: ", "/dev/input"),
                            logged(LogLevel::kVerbose, "Open VirtIO input device: ", "/dev/input/event0")));
}

TEST_F(Device_discovery, A_directory_that_cannot_be_opened_is_an_error_with_the_texts_close_together) {
    system.refuse_directory();

    EXPECT_FALSE(sut->init("/dev/input"));

    EXPECT_THAT(log.messages(),
                ElementsAre(logged(LogLevel::kVerbose, "Initialization of VirtIO"),
                            logged(LogLevel::kError, "Virtio device input folder \"", "/dev/input", "\"not found")));
    EXPECT_EQ(system.open_count(), 0U);
}

TEST_F(Device_discovery, An_epoll_instance_that_cannot_be_made_is_an_error_before_any_device_is_opened) {
    system.add_device("event0");
    system.fail_next_epoll(EMFILE);

    EXPECT_FALSE(sut->init("/dev/input"));

    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kVerbose, "Initialization of VirtIO"),
                                            logged(LogLevel::kError, "Failed to create epoll file descriptor! ",
                                                   "Too many open files")));
    EXPECT_THAT(system.opened_paths(), IsEmpty());
}

TEST_F(Device_discovery, An_empty_directory_gives_no_device) {
    EXPECT_FALSE(sut->init("/dev/input"));

    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kVerbose, "Initialization of VirtIO"),
                                            logged(LogLevel::kInfo, "Adding devices from directory: ", "/dev/input"),
                                            no_device_found()));
}

TEST_F(Device_discovery, Only_entries_whose_name_begins_with_event_are_opened) {
    for (char const* name :
         {".", "..", "mouse0", "even", "Event0", "js-event0", "by-id", "event", "events", "event7"}) {
        system.add_device(name);
    }

    EXPECT_TRUE(sut->init("/dev/input"));

    EXPECT_THAT(system.opened_paths(), ElementsAre("/dev/input/event", "/dev/input/events", "/dev/input/event7"));
}

TEST_F(Device_discovery, Devices_are_opened_in_the_order_of_the_directory) {
    for (char const* name : {"event9", "event0", "event4"}) {
        system.add_device(name);
    }

    EXPECT_TRUE(sut->init("/somewhere"));

    EXPECT_THAT(system.opened_paths(), ElementsAre("/somewhere/event9", "/somewhere/event0", "/somewhere/event4"));
}

TEST_F(Device_discovery, A_device_that_cannot_be_opened_fails_the_start_though_the_others_are_used) {
    system.add_device("event0");
    system.add_device("event1");
    system.refuse_open("event0");

    EXPECT_FALSE(sut->init("/dev/input"));

    EXPECT_THAT(log.messages(),
                Contains(logged(LogLevel::kError, "Can't open VirtIO input device: ", "/dev/input/event0")));
    system.press("event1", KEY_R);
    EXPECT_EQ(sut->get_command(0), Virtio_command::run);
}

TEST_F(Device_discovery, A_failure_is_not_made_good_by_a_later_device) {
    system.add_device("event0");
    system.add_device("event1");
    system.refuse_watch("event0");

    EXPECT_FALSE(sut->init("/dev/input"));
}

TEST_F(Device_discovery, No_usable_device_is_told_also_after_one_that_could_not_be_opened) {
    system.add_device("event0");
    system.refuse_open("event0");

    EXPECT_FALSE(sut->init("/dev/input"));

    EXPECT_THAT(log.at_least(LogLevel::kError),
                ElementsAre(logged(LogLevel::kError, "Can't open VirtIO input device: ", "/dev/input/event0"),
                            no_device_found()));
}

TEST_F(Device_discovery, A_device_without_keys_is_skipped_without_failure_and_left_open) {
    system.add_device("event0", std::uint64_t{1} << EV_SYN | std::uint64_t{1} << EV_MSC | std::uint64_t{1} << EV_PWR);
    system.add_device("event1");

    EXPECT_TRUE(sut->init("/dev/input"));

    EXPECT_TRUE(system.is_open(system.descriptor_of("event0")));
    EXPECT_THAT(system.closes(), IsEmpty());
    system.press("event0", KEY_R);
    EXPECT_EQ(sut->get_command(0), Virtio_command::none);
}

TEST_F(Device_discovery, Keys_are_enough_and_other_abilities_are_not_asked_for) {
    system.add_device("event0", std::uint64_t{1} << EV_KEY);

    EXPECT_TRUE(sut->init("/dev/input"));
}

TEST_F(Device_discovery, Only_devices_without_keys_are_no_device) {
    system.add_device("event0", ~(std::uint64_t{1} << EV_KEY));

    EXPECT_FALSE(sut->init("/dev/input"));

    EXPECT_THAT(log.at_least(LogLevel::kError), ElementsAre(no_device_found()));
}

TEST_F(Device_discovery, A_device_that_cannot_tell_its_abilities_has_none) {
    system.add_device("event0");
    system.refuse_event_types("event0");

    EXPECT_FALSE(sut->init("/dev/input"));

    EXPECT_THAT(log.at_least(LogLevel::kError), ElementsAre(no_device_found()));
}

TEST_F(Device_discovery, A_device_that_epoll_refuses_is_closed_and_fails_the_start) {
    system.add_device("event0");
    system.add_device("event1");
    system.refuse_watch("event1");
    system.use_descriptor("event1", 55);

    EXPECT_FALSE(sut->init("/dev/input"));

    EXPECT_THAT(log.at_least(LogLevel::kError),
                ElementsAre(logged(LogLevel::kError, "Can't add input device to epoll! epoll_ctl failed!")));
    EXPECT_THAT(system.closes(), ElementsAre(55));
}

TEST_F(Device_discovery, A_second_start_after_a_good_one_does_nothing_and_returns_false) {
    system.add_device("event0");
    ASSERT_TRUE(sut->init("/dev/input"));
    log.clear();

    EXPECT_FALSE(sut->init("/dev/input"));

    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kVerbose, "VirtIO interface already initialized")));
    EXPECT_THAT(system.directories(), ElementsAre("/dev/input"));
    system.press("event0", KEY_R);
    EXPECT_EQ(sut->get_command(0), Virtio_command::run);
}

TEST_F(Device_discovery, A_start_after_a_failed_one_looks_again) {
    ASSERT_FALSE(sut->init("/dev/input"));
    system.add_device("event0");

    EXPECT_TRUE(sut->init("/dev/input"));

    system.press("event0", KEY_R);
    EXPECT_EQ(sut->get_command(0), Virtio_command::run);
}

TEST_F(Device_discovery, A_start_after_a_failed_one_leaves_no_device_open_that_has_no_slot) {
    constexpr std::size_t k_devices = 8;
    for (std::size_t number = 0; number < k_devices; ++number) {
        system.add_device("event" + std::to_string(number));
    }
    system.add_device("event-without-keys", std::uint64_t{1} << EV_SYN);
    system.add_device("event-refused");
    system.refuse_open("event-refused");
    ASSERT_FALSE(sut->init("/dev/input"));
    ASSERT_EQ(system.open_count(), k_devices + 2) << "its devices, the one without keys, and the epoll instance";

    EXPECT_FALSE(sut->init("/dev/input"));
    EXPECT_EQ(system.open_count(), k_devices + 2);

    int const gone = system.descriptor_of("event7");
    system.hang_up("event7");
    sut->get_command(0);
    EXPECT_FALSE(sut->init("/dev/input"));
    EXPECT_EQ(std::count(system.closes().begin(), system.closes().end(), gone), 1) << "its number may be another's";
}

TEST_F(Device_discovery, A_start_after_one_that_failed_half_way_keeps_nothing_of_it) {
    system.add_device("event0");
    system.add_device("event1");
    system.refuse_watch("event1");
    ASSERT_FALSE(sut->init("/dev/input"));
    std::size_t const open_after_first = system.open_count();

    EXPECT_FALSE(sut->init("/dev/input"));
    EXPECT_EQ(system.open_count(), open_after_first);

    system.unlist_device("event0");
    system.unlist_device("event1");
    EXPECT_FALSE(sut->init("/dev/input"));
    EXPECT_THAT(log.messages().back(), no_device_found());
}

TEST_F(Device_discovery, Devices_beyond_the_fourth_are_used_though_no_slot_holds_them) {
    for (int i = 0; i < 9; ++i) {
        system.add_device("event" + std::to_string(i));
    }

    EXPECT_TRUE(sut->init("/dev/input"));

    system.press("event4", KEY_N);
    EXPECT_EQ(sut->get_command(0), Virtio_command::nm_controlled);
    system.press("event8", KEY_R);
    EXPECT_THAT(take_all(), ElementsAre(Virtio_command::nm_controlled, Virtio_command::run));
}

}  // namespace
}  // namespace ximo::ap::statemanager::virtio
