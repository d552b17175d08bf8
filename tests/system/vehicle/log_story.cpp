#include "story.h"

namespace bench::vehicle {
namespace {

class Log : public Story {};

TEST_F(Log, Is_not_needed_to_run) {
    options.with_log = false;
    start_and_run();
    machine->press("power");
    auto const before = std::chrono::steady_clock::now();
    EXPECT_TRUE(ends_with(0));
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(3)) << "it waits for nobody at its end";
}

TEST_F(Log, May_stop_reading_without_stopping_the_daemon) {
    settings()["StateManagerMainPeriod"] = 1;
    start_and_run();
    machine->log().daemon().signal(SIGSTOP);
    machine->watch(std::chrono::milliseconds(1500));
    machine->press("p");
    EXPECT_TRUE(sees(Kind::state_word, "prepared4sd"));
    machine->log().daemon().signal(SIGCONT);
}

TEST_F(Log, Is_announced_with_the_name_and_the_description_of_the_daemon) {
    start_and_run();
    auto const position = machine->await(Kind::log, "Entering running state");
    ASSERT_TRUE(position);
    EXPECT_EQ(machine->events()[*position].application, "STMG");
    EXPECT_THAT(machine->log().announcements(), testing::HasSubstr("ORVAX State Manager"));
}

TEST_F(Log, Carries_level_context_and_time_of_a_call) {
    start_and_run();
    auto const position = machine->await(Kind::log, "Entering running state");
    ASSERT_TRUE(position);
    auto const& message = machine->events()[*position];
    EXPECT_EQ(message.level, 4);
    EXPECT_EQ(message.context, "DFLT");
    auto const word = machine->events()[*machine->await(Kind::state_word, "running")];
    EXPECT_NEAR(static_cast<double>(message.time), static_cast<double>(word.time), 5e6) << "logged just before";
}

// Without a device a cycle waits for nothing, and each logs at debug and verbose.
TEST_F(Log, Keeps_room_for_the_last_words_when_a_daemon_without_devices_floods_it) {
    start_and_run();
    machine->hypervisor().command({{"do", "remove_device"}, {"device", "event0"}});
    machine->watch(std::chrono::milliseconds(500));
    machine->signal_daemon(SIGTERM);
    EXPECT_TRUE(ends_with(0));
    for (auto const* const word : {"SIGTERM received!", "AP_StateManger daemon shutting down"}) {
        EXPECT_TRUE(logs(word)) << word;
    }
}

}  // namespace
}  // namespace bench::vehicle
