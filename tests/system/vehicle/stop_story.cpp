#include "story.h"

namespace bench::vehicle {
namespace {

using testing::Contains;
using testing::ElementsAre;

class Stop : public Story, public testing::WithParamInterface<int> {};

TEST_P(Stop, Is_orderly_on_each_of_its_signals) {
    start_and_run();
    ASSERT_TRUE(sees(Kind::notification, "READY"));
    machine->signal_daemon(GetParam());
    EXPECT_TRUE(ends_with(0));
    std::vector<std::string> const last_words{"SIGTERM received!", "Shutting down AP_StateManger",
                                              "AP_StateManger reporting kTerminating to EM",
                                              "AP_StateManger daemon shutting down"};
    EXPECT_EQ(logged_of(last_words), last_words);
    EXPECT_EQ(level_of("AP_StateManger daemon shutting down"), 4);
    EXPECT_TRUE(sees(Kind::notification, "STOPPING"));
    EXPECT_THAT(texts(Kind::notification), ElementsAre("READY", "STOPPING"));
}

INSTANTIATE_TEST_SUITE_P(Signals, Stop, testing::Values(SIGTERM, SIGINT, SIGABRT));

TEST_F(Stop, Follows_a_normal_shutdown_that_was_asked_of_execution_management) {
    start_and_run();
    machine->press("power");
    EXPECT_TRUE(ends_with(0));
    EXPECT_THAT(texts(Kind::state_word), ElementsAre("startingup", "running", "shuttingdown"));
    EXPECT_THAT(texts(Kind::machine_state), ElementsAre("Running", "Shutdown"));
    EXPECT_THAT(texts(Kind::log), Contains("Normal shutdown executed"));
}

TEST_F(Stop, Does_not_follow_a_fast_shutdown) {
    settings()["PMSuspendRequestTimeout"] = 7;
    start_and_run();
    machine->press("p");
    ASSERT_TRUE(sees(Kind::state_word, "prepared4sd"));
    machine->press("power");
    ASSERT_TRUE(sees(Kind::power_off, "poweroff 7000"));
    EXPECT_EQ(machine->await_end(std::chrono::milliseconds(500)), std::nullopt);
    EXPECT_THAT(texts(Kind::power_off), ElementsAre("lookup vyn_per_daemon", "terminate", "poweroff 7000"));
    EXPECT_THAT(texts(Kind::log), Contains("Fast shutdown executed"));
}

TEST_F(Stop, Is_normal_when_nobody_reads_the_power_off_channel) {
    options.with_power_off_service = false;
    start_and_run();
    machine->press("p");
    ASSERT_TRUE(sees(Kind::state_word, "prepared4sd"));
    machine->press("power");
    EXPECT_TRUE(ends_with(0));
    EXPECT_THAT(texts(Kind::log), Contains("Normal shutdown executed"));
    EXPECT_THAT(texts(Kind::machine_state), Contains("Shutdown"));
}

// The destructors of what outlives main log as well, and the log is there until the last of them has.
TEST_F(Stop, Loses_no_message_of_its_last_moments) {
    start_and_run();
    machine->signal_daemon(SIGTERM);
    ASSERT_TRUE(ends_with(0));
    auto const logged = texts(Kind::log);
    auto const closing = std::find(logged.begin(), logged.end(), "AP_StateManger daemon shutting down");
    ASSERT_NE(closing, logged.end());
    auto const after = std::count_if(closing, logged.end(), [](std::string const& text) {
        return text.rfind("Failed to close event file descriptor!", 0) == 0;
    });
    EXPECT_EQ(after, 5) << "one for each of the five slots";
}

}  // namespace
}  // namespace bench::vehicle
