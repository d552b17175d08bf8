#include "virtio_fixture.h"

#include <cerrno>
#include <climits>

namespace ximo::ap::statemanager::virtio {
namespace {

class Command_waiting : public Keyboard_fixture {};

Log_message readed(std::int64_t bytes) {
    return logged(LogLevel::kDebug, "Readed bytes: ", bytes);
}
Log_message waited(int events) {
    return logged(LogLevel::kDebug, "Epoll_wait returned: ", events);
}
Log_message read_failed() {
    return logged(LogLevel::kError, "Reading virtual input event failed");
}

TEST_F(Virtio_fixture, Without_a_device_nothing_is_waited_for_and_nothing_logged) {
    EXPECT_EQ(sut->get_command(5000), Virtio_command::none);
    sut->check_for_commands(5000);

    EXPECT_THAT(system.waits(), IsEmpty());
    EXPECT_THAT(log.messages(), IsEmpty());
}

TEST_F(Virtio_fixture, Without_a_device_a_queued_command_is_still_given) {
    sut->add_command(Virtio_command::prepare_sd);

    EXPECT_EQ(sut->get_command(5000), Virtio_command::prepare_sd);

    EXPECT_THAT(system.waits(), IsEmpty());
}

TEST_F(Command_waiting, A_wait_that_times_out_gives_none) {
    EXPECT_EQ(sut->get_command(250), Virtio_command::none);

    EXPECT_THAT(system.waits(), ElementsAre(250));
    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kDebug, "Epoll_wait start"), waited(0)));
}

TEST_F(Command_waiting, A_wait_that_fails_gives_none) {
    system.press("event0", KEY_R);
    system.fail_next_wait(EINTR);

    EXPECT_EQ(sut->get_command(250), Virtio_command::none);

    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kDebug, "Epoll_wait start"), waited(-1)));
}

TEST_F(Command_waiting, A_time_beyond_what_epoll_takes_is_cut) {
    sut->check_for_commands(0);
    sut->check_for_commands(INT_MAX);
    sut->check_for_commands(static_cast<unsigned int>(INT_MAX) + 1);
    sut->check_for_commands(UINT_MAX);

    EXPECT_THAT(system.waits(), ElementsAre(0, INT_MAX, INT_MAX, INT_MAX));
}

TEST_F(Command_waiting, A_press_is_told_step_by_step) {
    system.send("event0", EV_KEY, KEY_S, 1);

    EXPECT_EQ(sut->get_command(100), Virtio_command::nm_controlled_prepare_sd);

    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kDebug, "Epoll_wait start"), waited(1), readed(24),
                                            logged(LogLevel::kInfo, "New command received", "NMControlledPrepareSD")));
}

TEST_F(Command_waiting, The_release_and_the_group_ends_around_a_press_are_unsupported_and_told_so) {
    system.press("event0", KEY_R);
    read_all(1);
    log.clear();
    read_all(3);

    EXPECT_THAT(log.messages(),
                ElementsAre(logged(LogLevel::kDebug, "Epoll_wait start"), waited(1), readed(24), unsupported(0, 0, 0),
                            logged(LogLevel::kDebug, "Epoll_wait start"), waited(1), readed(24), unsupported(1, 19, 0),
                            logged(LogLevel::kDebug, "Epoll_wait start"), waited(1), readed(24), unsupported(0, 0, 0)));
}

TEST_F(Command_waiting, A_key_that_repeats_itself_is_unsupported) {
    system.send("event0", EV_KEY, KEY_P, 2);

    EXPECT_EQ(sut->get_command(0), Virtio_command::none);

    EXPECT_THAT(log.messages().back(), unsupported(1, 25, 2));
}

TEST_F(Command_waiting, An_unknown_event_is_told_with_its_numbers) {
    system.send("event0", 65535, 65534, -7);

    sut->check_for_commands(0);

    EXPECT_THAT(log.messages().back(), unsupported(65535, 65534, -7));
}

TEST_F(Command_waiting, One_wait_reads_one_record_of_a_device) {
    system.send("event0", EV_KEY, KEY_R, 1);
    system.send("event0", EV_KEY, KEY_N, 1);

    sut->check_for_commands(0);
    EXPECT_EQ(log.messages(LogLevel::kInfo).size(), 1U);

    sut->check_for_commands(0);
    EXPECT_EQ(log.messages(LogLevel::kInfo).size(), 2U);
}

TEST_F(Command_waiting, A_record_cut_short_is_completed_with_zeros) {
    system.send_bytes("event0", std::vector<std::uint8_t>(16, 0xFF));

    sut->check_for_commands(0);

    EXPECT_THAT(log.messages(),
                ElementsAre(logged(LogLevel::kDebug, "Epoll_wait start"), waited(1), readed(16), unsupported(0, 0, 0)));
}

TEST_F(Command_waiting, An_end_of_file_is_evaluated_as_an_empty_record) {
    system.send_bytes("event0", {});

    sut->check_for_commands(0);

    EXPECT_THAT(log.messages(),
                ElementsAre(logged(LogLevel::kDebug, "Epoll_wait start"), waited(1), readed(0), unsupported(0, 0, 0)));
}

TEST_F(Command_waiting, A_failed_read_is_an_error_and_the_record_is_evaluated_all_the_same) {
    system.fail_next_read("event0", EAGAIN);

    EXPECT_EQ(sut->get_command(0), Virtio_command::none);

    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kDebug, "Epoll_wait start"), waited(1), readed(-1),
                                            read_failed(), unsupported(0, 0, 0)));
}

TEST_F(Command_waiting, What_a_wait_has_read_does_not_reach_into_the_next_wait) {
    system.send("event0", EV_KEY, KEY_R, 1);
    sut->check_for_commands(0);
    log.clear();
    system.fail_next_read("event0", EIO);

    sut->check_for_commands(0);

    EXPECT_THAT(log.messages().back(), unsupported(0, 0, 0));
}

TEST_F(Command_waiting, A_device_that_reports_neither_input_nor_an_end_is_skipped) {
    system.send("event0", EV_KEY, KEY_R, 1);
    system.raise("event0", EPOLLPRI);

    EXPECT_EQ(sut->get_command(0), Virtio_command::none);
    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kDebug, "Epoll_wait start"), waited(1)));

    EXPECT_EQ(sut->get_command(0), Virtio_command::run);
}

class Several_devices : public Virtio_fixture {
 protected:
    void start(int devices) {
        for (int i = 0; i < devices; ++i) {
            system.add_device("event" + std::to_string(i));
        }
        ASSERT_TRUE(sut->init("/dev/input"));
        log.clear();
    }
};

TEST_F(Several_devices, One_wait_takes_a_record_from_each_that_has_one_in_the_order_reported) {
    start(3);
    system.send("event2", EV_KEY, KEY_N, 1);
    system.send("event0", EV_KEY, KEY_R, 1);

    sut->check_for_commands(0);

    EXPECT_THAT(log.messages(LogLevel::kInfo),
                ElementsAre(logged(LogLevel::kInfo, "New command received", "Run"),
                            logged(LogLevel::kInfo, "New command received", "NmControlled")));
}

TEST_F(Several_devices, A_failed_read_evaluates_what_the_read_before_it_in_the_same_wait_has_left) {
    start(3);
    system.send("event0", EV_KEY, KEY_P, 2);
    system.fail_next_read("event1", EIO);
    system.send("event2", EV_KEY, KEY_R, 1);

    EXPECT_EQ(sut->get_command(0), Virtio_command::run);

    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kDebug, "Epoll_wait start"), waited(3), readed(24),
                                            unsupported(1, 25, 2), readed(-1), read_failed(), unsupported(1, 25, 2),
                                            readed(24), logged(LogLevel::kInfo, "New command received", "Run")));
}

TEST_F(Several_devices, A_short_read_overwrites_only_the_bytes_that_came) {
    start(2);
    system.send("event0", EV_KEY, KEY_P, 2);
    system.send_bytes("event1", std::vector<std::uint8_t>(17, 0x16));

    sut->check_for_commands(0);

    EXPECT_THAT(log.messages().back(), unsupported(22, 25, 2));
}

TEST_F(Several_devices, A_power_press_before_a_failed_read_counts_twice) {
    start(2);
    system.send("event0", EV_KEY, KEY_POWER, 1);
    system.fail_next_read("event1", EIO);

    EXPECT_EQ(sut->get_command(0), Virtio_command::none);
}

TEST_F(Several_devices, More_than_five_that_are_ready_are_served_by_further_waits) {
    start(7);
    for (int i = 0; i < 7; ++i) {
        std::uint16_t const key = i % 2 == 0 ? std::uint16_t{KEY_R} : std::uint16_t{KEY_N};
        system.send("event" + std::to_string(i), EV_KEY, key, 1);
    }

    sut->check_for_commands(0);
    EXPECT_EQ(log.messages(LogLevel::kInfo).size(), 5U);

    sut->check_for_commands(0);
    EXPECT_EQ(log.messages(LogLevel::kInfo).size(), 7U);
}

}  // namespace
}  // namespace ximo::ap::statemanager::virtio
