// What the queue holds, and what is told of it, in any order of keys, commands and consumption, against a model.

#include "status/page_writer.h"
#include "virtio_fixture.h"

#include <array>
#include <deque>
#include <random>
#include <utility>

namespace ximo::ap::statemanager::virtio {
namespace {

class Command_queue : public Keyboard_fixture {
 protected:
    using Key = std::pair<std::uint16_t, Virtio_command>;

    unsigned below(unsigned end) { return static_cast<unsigned>(random()) % end; }

    // A command like the one accepted last is dropped, also when that has been consumed; no command is one, too.
    void accept(Virtio_command command) {
        if (std::exchange(last, command) != command) {
            queue.push_back(command);
            told.push_back(logged(LogLevel::kInfo, "New command received", toString(command)));
        }
    }

    void press_a_key() {
        auto const [key, command] = keys.at(below(5));
        press(key, key == KEY_POWER && below(2) == 0 ? EV_PWR : EV_KEY);
        if (command == Virtio_command::shutdown) {
            queue.clear();
        }
        accept(command);
    }

    void add_a_command() {
        auto const command = static_cast<Virtio_command>(below(6));
        sut->add_command(command);
        accept(command);
    }

    // The command that is named is the one accepted last, whichever goes.
    void consume() {
        sut->command_consumed();
        if (!queue.empty()) {
            queue.pop_front();
            told.push_back(logged(LogLevel::kInfo, "Consumed VirtIO command: ", toString(last)));
        }
    }

    std::array<Key, 5> const keys{{{KEY_R, Virtio_command::run},
                                   {KEY_N, Virtio_command::nm_controlled},
                                   {KEY_S, Virtio_command::nm_controlled_prepare_sd},
                                   {KEY_P, Virtio_command::prepare_sd},
                                   {KEY_POWER, Virtio_command::shutdown}}};
    std::deque<Virtio_command> queue;
    Virtio_command last{Virtio_command::none};
    std::vector<Log_message> told;
    std::mt19937 random{1};
};

TEST_F(Command_queue, Holds_what_was_accepted_and_not_consumed_in_any_order) {
    for (int step = 0; step < 2000; ++step) {
        log.clear();
        told.clear();
        switch (below(5)) {
            case 0:
            case 1:
                press_a_key();
                break;
            case 2:
                add_a_command();
                break;
            default:
                consume();
        }
        auto const head = queue.empty() ? Virtio_command::none : queue.front();
        ASSERT_EQ(log.messages(LogLevel::kInfo), told) << "step " << step;
        ASSERT_EQ(sut->get_command(0), head) << "step " << step;
        ASSERT_EQ(sut->get_command(0), head) << "it stays until it is consumed";
    }
}

TEST_F(Command_queue, Keeps_many_in_their_order) {
    std::vector<Virtio_command> expected;
    for (int i = 0; i < 10'000; ++i) {
        expected.push_back(i % 2 == 0 ? Virtio_command::run : Virtio_command::nm_controlled);
        sut->add_command(expected.back());
    }

    EXPECT_EQ(take_all(), expected);
}

TEST_F(Virtio_fixture, Tells_the_status_page_of_its_devices_and_of_keys_that_it_drops) {
    auto const page = std::make_unique<status::Page>();
    status::set_page(page.get());
    system.add_device("event0");
    EXPECT_TRUE(sut->init("/dev/input"));
    EXPECT_EQ(page->driver.devices, 1U);
    sut->add_command(Virtio_command::run);
    EXPECT_EQ(page->driver.keys_dropped, 0U);
    sut->add_command(Virtio_command::run);
    EXPECT_EQ(page->driver.keys_dropped, 1U);
    status::set_page(nullptr);
}

}  // namespace
}  // namespace ximo::ap::statemanager::virtio
