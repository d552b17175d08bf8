#include "bench/hypervisor/commands.h"

#include "bench/hypervisor/journal.h"

#include <cerrno>
#include <string>

#include <gtest/gtest.h>

namespace bench::hypervisor {
namespace {

using nlohmann::json;

/// The commands on a model with the keyboard "event0", which one reader has open.
class Commands_test : public testing::Test {
 protected:
    static constexpr Input_device::Reader k_reader = 1;

    Commands_test() {
        add_commands(table, model);
        device = model.add_device("event0", 0b11);
        device->add_reader(k_reader);
        model.on_change([this](Input_device&) { ++changes; });
    }

    Model model;
    Command_table table;
    std::shared_ptr<Input_device> device;
    int changes{0};
};

TEST_F(Commands_test, Faults_that_were_told_can_be_taken_back) {
    table.answer(R"({"do":"fault","file":"set_status","operation":"write","errno":"EIO","count":1000})");
    ASSERT_TRUE(model.control_file("set_status")->faults().has(Operation::write));
    EXPECT_EQ(table.answer(R"({"do":"clear_faults","file":"set_status"})")["ok"], true);
    EXPECT_EQ(model.control_file("set_status")->write("a", 0, 0).error, 0);
}

TEST_F(Commands_test, The_journal_keeps_the_newest_requests) {
    auto const file = model.control_file("set_status");
    for (std::size_t number = 0; number <= Control_file::k_journal_length; ++number) {
        file->write("x", 0, 0);
    }
    EXPECT_EQ(file->journal().size(), Control_file::k_journal_length);
    EXPECT_EQ(file->journal().front().number, 2U);
}

TEST_F(Commands_test, The_journal_shows_bytes_that_are_no_readable_text_in_hexadecimal_too) {
    Request request;
    request.bytes = std::string("a\n\xff\0", 4);
    EXPECT_EQ(describe("set_status", request)["hex"], "610aff00");
    request.bytes = "running";
    EXPECT_FALSE(describe("set_status", request).contains("hex"));
}

class Wrong_command_test : public Commands_test, public testing::WithParamInterface<char const*> {};

TEST_P(Wrong_command_test, Gets_an_error_and_changes_and_plans_nothing) {
    json const answer = table.answer(GetParam());
    EXPECT_EQ(answer["ok"], false) << answer;
    EXPECT_TRUE(answer["error"].is_string());
    EXPECT_EQ(device->read(k_reader, 24).error, EAGAIN);
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(model.devices().size(), 1U);
    EXPECT_FALSE(device->hung_up());
    for (auto const operation : {Operation::open, Operation::write, Operation::read}) {
        EXPECT_FALSE(model.control_file("set_status")->faults().has(operation));
        EXPECT_FALSE(device->faults().has(operation));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Devices, Wrong_command_test,
    testing::Values(R"({"do":"press"})", R"({"do":"press","key":"escape"})", R"({"do":"press","key":-1})",
                    R"({"do":"press","key":768})", R"({"do":"press","key":"n","device":"event9"})",
                    R"({"do":"press","key":"n","type":"EV_NONE"})", R"({"do":"press","key":"n","type":65536})",
                    R"({"do":"press","key":"n","times":2})", R"({"do":"press","key":null})",
                    R"({"do":"record","type":1,"code":2})", R"({"do":"record","type":1,"code":2,"value":2147483648})",
                    R"({"do":"add_device"})", R"({"do":"add_device","device":"event0"})",
                    R"({"do":"add_device","device":"a/b"})", R"({"do":"add_device","device":"e","events":["KEY"]})",
                    R"({"do":"remove_device","device":"event9"})", R"({"do":"hang_up","device":"event9"})",
                    R"({"do":"hang_up","keep_announcing":1})"));

INSTANTIATE_TEST_SUITE_P(
    Faults, Wrong_command_test,
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
                    R"({"do":"clear_faults","file":"nothing"})", R"({"do":"journal","file":"event0"})",
                    R"({"do":"journal"})"));

}  // namespace
}  // namespace bench::hypervisor
