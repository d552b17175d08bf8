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

}  // namespace
}  // namespace devices
