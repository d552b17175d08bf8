// A FIFO takes a short command whole or not at all; a driver's file shows what a cut command does.

#include "hypervisor_fixture.h"
#include "statemanager/fast_shutdown/fast_shutdown_handler.h"

namespace devices {
namespace {

using ara::log::LogLevel;
using test_support::logged;
using testing::ElementsAre;
using ximo::ap::statemanager::fast_shutdown::Fast_shutdown_handler;

class Power_off_channel_test : public Hypervisor_fixture {
 protected:
    void cut_next_write(int bytes) {
        tell({{"do", "fault"}, {"file", "command_request"}, {"operation", "write"}, {"bytes", bytes}});
    }
};

TEST_F(Power_off_channel_test, Each_command_is_one_write) {
    Fast_shutdown_handler const sut(control_file("command_request"));

    sut.process_lookup();
    sut.start_fast_shutdown(std::chrono::milliseconds(2500));

    EXPECT_THAT(requests("command_request"), ElementsAre("lookup vyn_per_daemon\n", "terminate\n", "poweroff 2500\n"));
}

TEST_F(Power_off_channel_test, A_command_that_was_cut_is_told_and_not_completed) {
    Fast_shutdown_handler const sut(control_file("command_request"));
    cut_next_write(5);

    sut.start_fast_shutdown(std::chrono::milliseconds(2500));

    EXPECT_THAT(requests("command_request"), ElementsAre("terminate\n", "poweroff 2500\n"));
    EXPECT_THAT(log.messages(LogLevel::kWarn),
                ElementsAre(logged(LogLevel::kWarn, "Only part of command written: ", "termi",
                                   "Try to write remaining command: ", "inate")));
}

}  // namespace
}  // namespace devices
