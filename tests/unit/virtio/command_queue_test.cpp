#include "virtio_fixture.h"

namespace ximo::ap::statemanager::virtio {
namespace {

class Command_queue : public Virtio_fixture {};

Log_message received(char const* name) {
    return logged(LogLevel::kInfo, "New command received", name);
}
Log_message consumed(char const* name) {
    return logged(LogLevel::kInfo, "Consumed VirtIO command: ", name);
}

TEST_F(Command_queue, An_empty_queue_gives_none) {
    EXPECT_EQ(sut->get_command(0), Virtio_command::none);
}

TEST_F(Command_queue, The_oldest_command_stays_until_it_is_consumed) {
    sut->add_command(Virtio_command::run);
    sut->add_command(Virtio_command::prepare_sd);

    EXPECT_EQ(sut->get_command(0), Virtio_command::run);
    EXPECT_EQ(sut->get_command(0), Virtio_command::run);
    sut->command_consumed();
    EXPECT_EQ(sut->get_command(0), Virtio_command::prepare_sd);
    sut->command_consumed();
    EXPECT_EQ(sut->get_command(0), Virtio_command::none);
}

TEST_F(Command_queue, A_new_command_is_told_by_its_name) {
    sut->add_command(Virtio_command::run);
    sut->add_command(Virtio_command::shutdown);

    EXPECT_THAT(log.messages(), ElementsAre(received("Run"), received("Shutdown")));
}

TEST_F(Command_queue, A_command_like_the_one_before_is_dropped_silently) {
    sut->add_command(Virtio_command::nm_controlled);
    sut->add_command(Virtio_command::nm_controlled);

    EXPECT_THAT(log.messages(), ElementsAre(received("NmControlled")));
    EXPECT_THAT(take_all(), ElementsAre(Virtio_command::nm_controlled));
}

TEST_F(Command_queue, The_first_none_is_like_the_one_before) {
    sut->add_command(Virtio_command::none);
    EXPECT_THAT(log.messages(), IsEmpty());

    sut->command_consumed();
    EXPECT_THAT(log.messages(), IsEmpty());
}

TEST_F(Command_queue, A_later_none_is_queued_like_any_command) {
    sut->add_command(Virtio_command::run);
    sut->add_command(Virtio_command::none);
    sut->add_command(Virtio_command::run);

    EXPECT_THAT(log.messages(), ElementsAre(received("Run"), received("Non"), received("Run")));
}

TEST_F(Command_queue, The_same_command_is_queued_again_after_another_one) {
    sut->add_command(Virtio_command::nm_controlled);
    sut->add_command(Virtio_command::prepare_sd);
    sut->add_command(Virtio_command::nm_controlled);

    EXPECT_THAT(take_all(),
                ElementsAre(Virtio_command::nm_controlled, Virtio_command::prepare_sd, Virtio_command::nm_controlled));
}

TEST_F(Command_queue, Consuming_does_not_make_room_for_the_same_command) {
    sut->add_command(Virtio_command::run);
    sut->command_consumed();
    sut->add_command(Virtio_command::run);
    EXPECT_EQ(sut->get_command(0), Virtio_command::none);

    sut->add_command(Virtio_command::prepare_sd);
    sut->add_command(Virtio_command::run);
    EXPECT_THAT(take_all(), ElementsAre(Virtio_command::prepare_sd, Virtio_command::run));
}

TEST_F(Command_queue, Consuming_names_the_command_queued_last_and_not_the_one_removed) {
    sut->add_command(Virtio_command::run);
    sut->add_command(Virtio_command::prepare_sd);
    log.clear();

    sut->command_consumed();
    sut->command_consumed();

    EXPECT_THAT(log.messages(), ElementsAre(consumed("PrepareSD"), consumed("PrepareSD")));
}

TEST_F(Command_queue, Consuming_from_an_empty_queue_does_and_logs_nothing) {
    sut->command_consumed();
    EXPECT_THAT(log.messages(), IsEmpty());

    sut->add_command(Virtio_command::run);
    EXPECT_EQ(sut->get_command(0), Virtio_command::run);
}

TEST_F(Command_queue, Many_commands_keep_their_order) {
    std::vector<Virtio_command> expected;
    for (int i = 0; i < 10'000; ++i) {
        expected.push_back(i % 2 == 0 ? Virtio_command::run : Virtio_command::nm_controlled);
        sut->add_command(expected.back());
    }

    EXPECT_EQ(take_all(), expected);
}

class Pressed_keys : public Keyboard_fixture {};

TEST_F(Pressed_keys, Two_identical_presses_queue_one_command) {
    press(KEY_N);
    press(KEY_N);

    EXPECT_THAT(take_all(), ElementsAre(Virtio_command::nm_controlled));
}

TEST_F(Pressed_keys, Presses_of_different_keys_queue_them_all) {
    press(KEY_N);
    press(KEY_P);
    press(KEY_N);

    EXPECT_THAT(take_all(),
                ElementsAre(Virtio_command::nm_controlled, Virtio_command::prepare_sd, Virtio_command::nm_controlled));
}

TEST_F(Pressed_keys, Consuming_after_a_second_power_press_finds_nothing_to_remove) {
    press(KEY_POWER);
    press(KEY_POWER);
    log.clear();

    sut->command_consumed();

    EXPECT_THAT(log.messages(), IsEmpty());
}

}  // namespace
}  // namespace ximo::ap::statemanager::virtio
