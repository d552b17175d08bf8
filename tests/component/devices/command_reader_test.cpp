#include "hypervisor_fixture.h"
#include "statemanager/virtio/virtio_interface.h"

#include <chrono>
#include <future>

#include <fcntl.h>
#include <unistd.h>

namespace devices {
namespace {

using ara::log::LogLevel;
using std::chrono::milliseconds;
using std::chrono::steady_clock;
using test_support::logged;
using testing::ElementsAre;
using testing::IsEmpty;
using ximo::ap::statemanager::virtio::Virtio_command;
using ximo::ap::statemanager::virtio::Virtio_interface;

class Command_reader : public Hypervisor_fixture {
 protected:
    static constexpr unsigned int k_patience_ms = 10'000;

    /// Waits for the next command as the driver does, cycle by cycle, and consumes it.
    Virtio_command next_command() {
        auto const deadline = steady_clock::now() + milliseconds(k_patience_ms);
        auto command = Virtio_command::none;
        while (command == Virtio_command::none && steady_clock::now() < deadline) {
            command = sut.get_command(100);
        }
        sut.command_consumed();
        return command;
    }

    void start_with_keyboard() {
        add_device("event0");
        ASSERT_TRUE(sut.init(input()));
    }

    Virtio_interface sut;
};

TEST_F(Command_reader, Each_key_arrives_as_its_command) {
    start_with_keyboard();

    press("event0", "r");
    EXPECT_EQ(next_command(), Virtio_command::run);
    press("event0", "n");
    EXPECT_EQ(next_command(), Virtio_command::nm_controlled);
    press("event0", "s");
    EXPECT_EQ(next_command(), Virtio_command::nm_controlled_prepare_sd);
    press("event0", "p");
    EXPECT_EQ(next_command(), Virtio_command::prepare_sd);
    press("event0", "power");
    EXPECT_EQ(next_command(), Virtio_command::shutdown);
}

TEST_F(Command_reader, The_power_key_arrives_as_a_power_event_too) {
    start_with_keyboard();

    press("event0", "power", "EV_PWR");

    EXPECT_EQ(next_command(), Virtio_command::shutdown);
}

TEST_F(Command_reader, Keys_pressed_between_two_cycles_arrive_in_their_order) {
    start_with_keyboard();
    press("event0", "n");
    press("event0", "p");
    press("event0", "n");

    EXPECT_EQ(next_command(), Virtio_command::nm_controlled);
    EXPECT_EQ(next_command(), Virtio_command::prepare_sd);
    EXPECT_EQ(next_command(), Virtio_command::nm_controlled);
}

TEST_F(Command_reader, A_press_ends_the_wait) {
    start_with_keyboard();
    auto waiting = std::async(std::launch::async, [this] { return sut.get_command(k_patience_ms); });
    auto const pressed_at = steady_clock::now();

    press("event0", "r");

    EXPECT_EQ(waiting.get(), Virtio_command::run);
    EXPECT_LT(steady_clock::now() - pressed_at, milliseconds(k_patience_ms / 2));
}

TEST_F(Command_reader, A_wait_without_a_press_lasts_its_time) {
    start_with_keyboard();
    auto const begin = steady_clock::now();

    EXPECT_EQ(sut.get_command(50), Virtio_command::none);

    EXPECT_GE(steady_clock::now() - begin, milliseconds(50));
}

TEST_F(Command_reader, The_event_types_are_those_of_the_device) {
    add_device("event0", {"EV_SYN", "EV_KEY", "EV_PWR"});
    int const descriptor = ::open((input() + "/event0").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    ASSERT_GE(descriptor, 0);

    EXPECT_EQ(Virtio_interface::supported_event_types(descriptor), 1L << 0 | 1L << 1 | 1L << 22);

    fail("event0", "ioctl", "EIO");
    EXPECT_EQ(Virtio_interface::supported_event_types(descriptor), 0);
    ::close(descriptor);
}

TEST_F(Command_reader, A_device_that_hangs_up_leaves_what_it_had_brought_and_stops_the_waiting) {
    start_with_keyboard();
    press("event0", "p");
    auto const deadline = steady_clock::now() + milliseconds(k_patience_ms);
    while (sut.get_command(100) != Virtio_command::prepare_sd && steady_clock::now() < deadline) {
    }
    tell({{"do", "hang_up"}, {"device", "event0"}});

    // A cycle that does not wait logs nothing.
    do {
        log.clear();
        EXPECT_EQ(sut.get_command(100), Virtio_command::prepare_sd);
    } while (!log.messages().empty() && steady_clock::now() < deadline);

    auto const begin = steady_clock::now();
    EXPECT_EQ(sut.get_command(k_patience_ms), Virtio_command::prepare_sd);
    EXPECT_LT(steady_clock::now() - begin, milliseconds(k_patience_ms / 2));
    EXPECT_THAT(log.messages(), IsEmpty());
}

TEST_F(Command_reader, A_device_lost_with_unread_records_fails_to_read_in_every_cycle) {
    start_with_keyboard();
    press("event0", "r");
    tell({{"do", "hang_up"}, {"device", "event0"}, {"keep_announcing", true}});

    EXPECT_EQ(sut.get_command(k_patience_ms), Virtio_command::none);
    EXPECT_EQ(sut.get_command(k_patience_ms), Virtio_command::none);

    auto const failure = logged(LogLevel::kError, "Reading virtual input event failed");
    EXPECT_THAT(log.at_least(LogLevel::kError), ElementsAre(failure, failure));
}

}  // namespace
}  // namespace devices
