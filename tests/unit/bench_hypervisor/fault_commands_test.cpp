#include "command_fixture.h"

#include <cerrno>

namespace bench::hypervisor {
namespace {

using nlohmann::json;

class Fault_commands_test : public Command_fixture {};

TEST_F(Fault_commands_test, The_next_writes_fail_with_the_error_that_was_told) {
    EXPECT_EQ(
        sut({{"do", "fault"}, {"file", "set_status"}, {"operation", "write"}, {"errno", "ENOSPC"}, {"count", 2}})["ok"],
        true);
    auto const file = model.control_file("set_status");
    EXPECT_EQ(file->write("a", 0, 0).error, ENOSPC);
    EXPECT_EQ(file->write("b", 0, 0).error, ENOSPC);
    EXPECT_EQ(file->write("c", 0, 0).error, 0);
}

TEST_F(Fault_commands_test, A_fault_happens_once_unless_told_otherwise) {
    sut({{"do", "fault"}, {"file", "set_status"}, {"operation", "write"}, {"errno", "EIO"}});
    auto const file = model.control_file("set_status");
    EXPECT_EQ(file->write("a", 0, 0).error, EIO);
    EXPECT_EQ(file->write("b", 0, 0).error, 0);
}

TEST_F(Fault_commands_test, A_write_is_short_and_slow) {
    sut({{"do", "fault"}, {"file", "command_request"}, {"operation", "write"}, {"bytes", 3}, {"delay_ms", 20}});
    Request const& request = model.control_file("command_request")->write("restartao", 0, 0);
    EXPECT_EQ(request.accepted, 3U);
    EXPECT_EQ(request.delay, std::chrono::milliseconds(20));
    EXPECT_EQ(request.error, 0);
}

TEST_F(Fault_commands_test, A_device_refuses_to_open_and_fails_reads_and_ioctls) {
    for (char const* operation : {"open", "read", "ioctl"}) {
        EXPECT_EQ(sut({{"do", "fault"}, {"file", "event0"}, {"operation", operation}, {"errno", "EACCES"}})["ok"],
                  true);
    }
    EXPECT_EQ(device->faults().take(Operation::open).error, EACCES);
    EXPECT_EQ(device->read(k_reader, 24).error, EACCES);
    EXPECT_EQ(device->control(0x80084520, 8).error, EACCES);
}

TEST_F(Fault_commands_test, A_fault_of_a_device_wakes_its_readers) {
    sut({{"do", "fault"}, {"file", "event0"}, {"operation", "read"}, {"errno", "EIO"}});
    EXPECT_EQ(changes, 1);
}

TEST_F(Fault_commands_test, Faults_that_were_told_can_be_taken_back) {
    sut({{"do", "fault"}, {"file", "set_status"}, {"operation", "write"}, {"errno", "EIO"}, {"count", 1000}});
    EXPECT_EQ(sut({{"do", "clear_faults"}, {"file", "set_status"}})["ok"], true);
    EXPECT_EQ(model.control_file("set_status")->write("a", 0, 0).error, 0);
}

class Wrong_fault_command_test : public Command_fixture, public testing::WithParamInterface<char const*> {};

TEST_P(Wrong_fault_command_test, A_wrong_command_gets_an_error_and_plans_nothing) {
    json const answer = table.answer(GetParam());
    EXPECT_EQ(answer["ok"], false) << answer;
    EXPECT_FALSE(model.control_file("set_status")->faults().has(Operation::write));
    EXPECT_FALSE(model.control_file("set_status")->faults().has(Operation::open));
    EXPECT_FALSE(device->faults().has(Operation::read));
    EXPECT_FALSE(device->faults().has(Operation::open));
}

INSTANTIATE_TEST_SUITE_P(
    Commands, Wrong_fault_command_test,
    testing::Values(R"({"do":"fault","operation":"write","errno":"EIO"})",
                    R"({"do":"fault","file":"set_status","errno":"EIO"})",
                    R"({"do":"fault","file":"nothing","operation":"write","errno":"EIO"})",
                    R"({"do":"fault","file":"set_status","operation":"read","errno":"EIO"})",
                    R"({"do":"fault","file":"set_status","operation":"ioctl","errno":"EIO"})",
                    R"({"do":"fault","file":"event0","operation":"write","errno":"EIO"})",
                    R"({"do":"fault","file":"set_status","operation":"write"})",
                    R"({"do":"fault","file":"set_status","operation":"write","errno":"EIO","bytes":3})",
                    R"({"do":"fault","file":"event0","operation":"read","bytes":3})",
                    R"({"do":"fault","file":"set_status","operation":"write","errno":"EIO","count":0})",
                    R"({"do":"fault","file":"set_status","operation":"write","delay_ms":60001})",
                    R"({"do":"fault","file":"set_status","operation":"write","delay_ms":-1})",
                    R"({"do":"fault","file":"set_status","operation":"write","errno":"EIO","cuont":2})",
                    R"({"do":"clear_faults","file":"nothing"})"));

}  // namespace
}  // namespace bench::hypervisor
