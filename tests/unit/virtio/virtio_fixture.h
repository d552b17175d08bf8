#ifndef TESTS_UNIT_VIRTIO_VIRTIO_FIXTURE_H
#define TESTS_UNIT_VIRTIO_VIRTIO_FIXTURE_H

#include "statemanager/virtio/virtio_interface.h"
#include "support/fake_input_system.h"
#include "support/log_capture.h"

#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <linux/input-event-codes.h>

namespace ximo::ap::statemanager::virtio {

using ara::log::LogLevel;
using test_support::Fake_input_system;
using test_support::Log_capture;
using test_support::Log_message;
using test_support::logged;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

/// The command reader over a directory of pretended devices.
class Virtio_fixture : public testing::Test {
 protected:
    /// Takes all commands off the queue, oldest first.
    std::vector<Virtio_command> take_all() {
        std::vector<Virtio_command> commands;
        for (auto command = sut->get_command(0); command != Virtio_command::none; command = sut->get_command(0)) {
            commands.push_back(command);
            sut->command_consumed();
        }
        return commands;
    }

    Log_capture log;
    Fake_input_system system;
    std::unique_ptr<Virtio_interface> sut{std::make_unique<Virtio_interface>(system)};
};

/// The same with one keyboard, "event0", in use, and nothing in the log yet.
class Keyboard_fixture : public Virtio_fixture {
 protected:
    void SetUp() override {
        system.add_device("event0");
        ASSERT_TRUE(sut->init("/dev/input"));
        log.clear();
    }

    /// Lets the reader take in everything that waits, one record at a time.
    void read_all(int records) {
        for (int i = 0; i < records; ++i) {
            sut->check_for_commands(0);
        }
    }

    /// One key goes down and up, and the reader has seen all four records of it.
    void press(std::uint16_t code, std::uint16_t type = EV_KEY) {
        system.press("event0", code, type);
        read_all(4);
    }
};

inline Log_message unsupported(std::uint16_t type, std::uint16_t code, std::int32_t value) {
    return logged(LogLevel::kDebug, "Unsupported command type received! Type[", type, "] code[", code, "] value[",
                  value, "]");
}

}  // namespace ximo::ap::statemanager::virtio

#endif
