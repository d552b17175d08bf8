#include "hypervisor_fixture.h"
#include "statemanager/smw/shared_memory_reboot.h"
#include "statemanager/smw/shared_memory_update.h"

namespace devices {
namespace {

using ara::log::LogLevel;
using test_support::logged;
using testing::ElementsAre;
using testing::IsEmpty;
using ximo::ap::statemanager::smw::Shared_memory_reboot;
using ximo::ap::statemanager::smw::Shared_memory_update;

class Control_file_words : public Hypervisor_fixture {};

TEST_F(Control_file_words, Opening_is_no_request) {
    Shared_memory_update const sut(control_file("set_status"));

    EXPECT_THAT(requests("set_status"), IsEmpty());
    EXPECT_THAT(log.messages(), IsEmpty());
}

TEST_F(Control_file_words, Each_state_is_one_request_of_exactly_its_word) {
    Shared_memory_update sut(control_file("set_status"));

    sut.starting_up();
    sut.running();
    sut.run_nm_controlled();
    sut.post_run();
    sut.preparing();
    sut.prepared_4_sd();
    sut.resuming();
    sut.shutting_down();

    EXPECT_THAT(requests("set_status"), ElementsAre("startingup", "running", "runnmcontrolled", "postrun", "preparing",
                                                    "prepared4sd", "resuming", "shuttingdown"));
}

TEST_F(Control_file_words, An_empty_word_is_no_request) {
    Shared_memory_update sut(control_file("set_status"));

    EXPECT_TRUE(sut.write_to_memory(""));

    EXPECT_THAT(requests("set_status"), IsEmpty());
}

TEST_F(Control_file_words, A_restart_is_one_request) {
    Shared_memory_reboot sut(control_file("command_request"));

    sut.restart_vm();
    sut.restart_m3();

    EXPECT_THAT(requests("command_request"), ElementsAre("restartao", "restartm3"));
}

TEST_F(Control_file_words, A_restart_that_the_driver_refuses_is_three_requests) {
    Shared_memory_reboot sut(control_file("command_request"));
    fail("command_request", "write", "EIO");

    sut.restart_vm();

    EXPECT_THAT(requests("command_request"), ElementsAre("restartao", "cancel", "restartao"));
    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kWarn, "I/O exception while writing \"", "restartao",
                                                   "\" to file: ", control_file("command_request"))));
}

TEST_F(Control_file_words, A_driver_that_refuses_everything_still_gets_three_requests) {
    Shared_memory_reboot sut(control_file("command_request"));
    fail("command_request", "write", "EIO", 3);

    sut.restart_m3();

    EXPECT_THAT(requests("command_request"), ElementsAre("restartm3", "cancel", "restartm3"));
    EXPECT_EQ(log.messages().size(), 3U);
}

TEST_F(Control_file_words, States_are_reported_again_as_soon_as_the_driver_recovers) {
    Shared_memory_update sut(control_file("set_status"));
    fail("set_status", "write", "EBUSY", 2);

    sut.starting_up();
    sut.running();
    sut.preparing();

    EXPECT_THAT(requests("set_status"), ElementsAre("startingup", "running", "preparing"));
    EXPECT_EQ(log.messages(LogLevel::kWarn).size(), 2U);
    EXPECT_THAT(log.messages(LogLevel::kVerbose),
                ElementsAre(logged(LogLevel::kVerbose, "Failed to set startingup state in shared memory!"),
                            logged(LogLevel::kVerbose, "Failed to set running state in shared memory!")));
}

TEST_F(Control_file_words, An_interrupted_word_is_not_written_twice) {
    Shared_memory_update sut(control_file("set_status"));
    fail("set_status", "write", "EINTR");

    sut.running();

    EXPECT_THAT(requests("set_status"), ElementsAre("running"));
    EXPECT_EQ(log.messages(LogLevel::kWarn).size(), 1U);
}

TEST_F(Control_file_words, The_rest_of_a_word_that_the_driver_cut_is_not_sent) {
    Shared_memory_update sut(control_file("set_status"));
    tell({{"do", "fault"}, {"file", "set_status"}, {"operation", "write"}, {"bytes", 3}});

    sut.running();
    sut.post_run();

    EXPECT_THAT(requests("set_status"), ElementsAre("running", "postrun"));
    EXPECT_THAT(log.messages(LogLevel::kVerbose),
                ElementsAre(logged(LogLevel::kVerbose, "Failed to set running state in shared memory!")));
}

TEST_F(Control_file_words, A_file_that_refuses_to_open_swallows_every_word) {
    fail("set_status", "open", "EIO");
    Shared_memory_update sut(control_file("set_status"));

    sut.starting_up();

    EXPECT_THAT(requests("set_status"), IsEmpty());
    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kError, "Invalid Shared memory file provided: ",
                                                   control_file("set_status"), "!")));
}

}  // namespace
}  // namespace devices
