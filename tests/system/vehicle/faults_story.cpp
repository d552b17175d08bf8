#include "story.h"

namespace bench::vehicle {
namespace {

using testing::Contains;
using testing::ElementsAre;

class Faults : public Story {};

TEST_F(Faults, Of_the_status_file_are_logged_and_survived) {
    build();
    machine->hypervisor().command({{"do", "fault"}, {"file", "set_status"}, {"operation", "write"}, {"errno", "EIO"}});
    start();
    ASSERT_TRUE(logs("I/O exception while writing"));
    EXPECT_TRUE(logs("Failed to set startingup state in shared memory!"));
    EXPECT_TRUE(sees(Kind::state_word, "running")) << "the driver has recovered";
    machine->press("p");
    EXPECT_TRUE(sees(Kind::state_word, "prepared4sd"));
}

TEST_F(Faults, Of_a_missing_status_file_are_logged_once) {
    settings()["SharedMemoryConfig"]["UpdateStatusFile"] = "/nowhere/set_status";
    start();
    ASSERT_TRUE(logs("Invalid Shared memory file provided:"));
    EXPECT_TRUE(logs("AP_StateManger transition from Starting up  to  Running"));
    EXPECT_TRUE(sees(Kind::machine_state, "Running"));
}

TEST_F(Faults, Of_the_only_device_leave_the_daemon_running) {
    start_and_run();
    machine->hypervisor().command({{"do", "remove_device"}, {"device", "event0"}});
    auto const removed = machine->events().size();
    EXPECT_TRUE(machine->await(Kind::watchdog, "WATCHDOG", removed + 3)) << "it cycles and is alive";
    machine->signal_daemon(SIGTERM);
    EXPECT_TRUE(ends_with(0));
}

TEST_F(Faults, Of_one_device_leave_the_others_working) {
    options.devices = 2;
    start_and_run();
    machine->hypervisor().command({{"do", "hang_up"}, {"device", "event0"}});
    machine->hypervisor().command({{"do", "press"}, {"device", "event1"}, {"key", "p"}});
    EXPECT_TRUE(sees(Kind::state_word, "prepared4sd"));
}

TEST_F(Faults, Of_a_read_are_logged_and_survived) {
    start_and_run();
    machine->hypervisor().command({{"do", "fault"}, {"file", "event0"}, {"operation", "read"}, {"errno", "EIO"}});
    EXPECT_TRUE(logs("Reading virtual input event failed"));
    machine->press("p");
    EXPECT_TRUE(sees(Kind::state_word, "prepared4sd"));
}

TEST_F(Faults, Of_execution_management_that_refuses_are_survived) {
    build();
    machine->service_manager().command({{"do", "reaction"},
                                        {"error", "org.freedesktop.systemd1.NoSuchUnit"},
                                        {"unit", "MachineState-Running.target"}});
    start_and_run();
    machine->press("power");
    EXPECT_TRUE(ends_with(0));
    EXPECT_THAT(texts(Kind::machine_state), ElementsAre("Running", "Shutdown"));
}

TEST_F(Faults, Of_execution_management_that_never_answers_end_in_bounded_time) {
    build();
    machine->service_manager().command({{"do", "reaction"}, {"silent", true}});
    start();
    EXPECT_TRUE(logs("StateClient::SetState(MachineState, Running) exception: "));
    machine->press("p");
    EXPECT_TRUE(sees(Kind::state_word, "prepared4sd"));
    machine->service_manager().process().signal(SIGKILL);  // the end would wait for its answer
}

TEST_F(Faults, Of_a_bus_that_dies_are_logged_and_survived) {
    start_and_run();
    ASSERT_TRUE(sees(Kind::machine_state, "Running"));
    machine->bus().process().signal(SIGKILL);
    machine->service_manager().process().expect(EXIT_FAILURE);
    machine->press("power");
    EXPECT_TRUE(ends_with(0));
    EXPECT_TRUE(logs("StateClient::SetState(MachineState, Shutdown) exception: "));
}

TEST_F(Faults, Of_a_service_manager_that_is_not_there_do_not_keep_it_from_running) {
    options.with_service_manager = false;
    start_and_run();
    EXPECT_TRUE(logs("StateClient::SetState(MachineState, Running) exception: "));
    machine->signal_daemon(SIGTERM);
    EXPECT_TRUE(ends_with(0));
}

TEST_F(Faults, Of_a_notify_socket_that_is_not_there_are_no_faults) {
    options.with_notify_socket = false;
    start_and_run();
    EXPECT_TRUE(sees(Kind::machine_state, "Running"));
    machine->press("power");
    EXPECT_TRUE(ends_with(0));
    EXPECT_THAT(texts(Kind::notification), testing::IsEmpty());
    EXPECT_THAT(texts(Kind::watchdog), testing::IsEmpty());
    EXPECT_THAT(texts(Kind::log), testing::Not(Contains(testing::HasSubstr("AliveSupervision: caught"))));
}

// What the write itself comes to is told by the tests of the channel.
TEST_F(Faults, Of_a_reader_that_went_away_do_not_end_the_daemon_by_a_signal) {
    start_and_run();
    std::ifstream status("/proc/" + std::to_string(machine->daemon().pid()) + "/status");
    std::string const text(std::istreambuf_iterator<char>(status), {});
    auto const ignored = text.find("SigIgn:\t");
    ASSERT_NE(ignored, std::string::npos);
    EXPECT_NE(std::stoull(text.substr(ignored + 8, 16), nullptr, 16) & 1ULL << (SIGPIPE - 1), 0U);
}

TEST_F(Faults, Of_the_supervision_stop_its_reports_for_good) {
    start_and_run();
    ASSERT_TRUE(sees(Kind::watchdog, "WATCHDOG"));
    machine->service_manager().process().signal(SIGKILL);
    EXPECT_TRUE(logs("AliveSupervision: caught "));
    EXPECT_TRUE(logs("Stopping AliveSupervision reporting to PHM!"));
    machine->watch(std::chrono::milliseconds(300));
    auto const logged = texts(Kind::log);
    EXPECT_EQ(std::count(logged.begin(), logged.end(), "Stopping AliveSupervision reporting to PHM!"), 1);
}

}  // namespace
}  // namespace bench::vehicle
