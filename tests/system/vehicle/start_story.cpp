#include "story.h"

namespace bench::vehicle {
namespace {

using testing::Contains;
using testing::IsEmpty;
using testing::Not;

class Start : public Story {};

TEST_F(Start, Reports_alive_in_every_cycle) {
    settings()["StateManagerMainPeriod"] = 10;
    start_and_run();
    machine->watch(std::chrono::milliseconds(300));
    machine->signal_daemon(SIGTERM);
    EXPECT_TRUE(ends_with(0));  // so that beats and messages are those of the same cycles
    auto const cycles = static_cast<std::ptrdiff_t>(texts(Kind::watchdog).size());
    EXPECT_GT(cycles, 10);
    auto const logged = texts(Kind::log);
    auto const started = std::count(logged.begin(), logged.end(), "Starting AP_StateManager run_cyclic_task");
    EXPECT_NEAR(static_cast<double>(cycles), static_cast<double>(started), 5);
}

TEST_F(Start, Is_told_to_everybody_in_order) {
    start_and_run();
    ASSERT_TRUE(sees(Kind::machine_state, "Running"));
    ASSERT_TRUE(sees(Kind::watchdog, "WATCHDOG"));
    auto const time_of = [this](Kind kind, char const* text) {
        return machine->events()[*machine->await(kind, text)].time;
    };
    EXPECT_LT(time_of(Kind::state_word, "startingup"), time_of(Kind::notification, "READY"));
    EXPECT_LT(time_of(Kind::notification, "READY"), time_of(Kind::watchdog, "WATCHDOG"));
    EXPECT_LT(time_of(Kind::watchdog, "WATCHDOG"), time_of(Kind::machine_state, "Running"));
    EXPECT_LT(time_of(Kind::state_word, "running"), time_of(Kind::machine_state, "Running"));
}

TEST_F(Start, Ends_with_status_255_without_a_configuration) {
    options.configuration_name = "another.json";
    start();
    EXPECT_TRUE(ends_with(255));
    EXPECT_THAT(texts(Kind::log),
                Contains("Configuration file could NOT be opened! Path:  /etc/adaptive/ap_statemanager.json"));
    EXPECT_EQ(level_of("Configuration is ill formatted, AP_StateManger is aborted."), 1);
    EXPECT_THAT(texts(Kind::log), Not(Contains("AP_StateManger daemon shutting down")));
    EXPECT_THAT(texts(Kind::state_word), IsEmpty());
    EXPECT_THAT(texts(Kind::notification), IsEmpty());
}

TEST_F(Start, Ends_with_status_255_with_a_malformed_configuration_and_tells_the_reason_without_a_log) {
    options.configuration = "{ \"ap_statemanager\": ";
    options.daemon_starter = {"sh", "-c", "exec \"$0\" 2>/tmp/told"};
    start();
    EXPECT_TRUE(ends_with(255));
    std::ifstream file("/tmp/told");
    std::string const told{std::istreambuf_iterator<char>(file), {}};
    EXPECT_THAT(told, testing::MatchesRegex("STMG: Failed to parse configuration:  .*parse error.*\n"
                                            "STMG: Configuration is ill formatted, AP_StateManger is aborted.\n"));
    EXPECT_EQ(level_of("Configuration is ill formatted, AP_StateManger is aborted."), 1);
    EXPECT_THAT(texts(Kind::log), Not(Contains("AP_StateManger daemon shutting down")));
}

TEST_F(Start, Ends_with_status_255_when_the_host_has_no_name_to_choose_by) {
    options.daemon_starter = {"/usr/bin/env", "LD_PRELOAD=" NO_HOST_NAME, "ASAN_OPTIONS=verify_asan_link_order=0"};
    start();
    EXPECT_TRUE(ends_with(255));
    EXPECT_EQ(level_of("Unable to read configuration selection file. AP_StateManger is aborted."), 1);
    EXPECT_THAT(texts(Kind::log), Not(Contains("AP_StateManger daemon shutting down")));
    EXPECT_THAT(texts(Kind::state_word), IsEmpty());
    EXPECT_THAT(texts(Kind::notification), IsEmpty());
}

// libdlt starts two threads before the log starts its own.
TEST_F(Start, Ends_with_status_255_when_the_log_can_not_have_a_thread) {
    options.daemon_starter = {"/usr/bin/env", "LD_PRELOAD=" NO_THREAD, "NO_THREAD=3",
                              "ASAN_OPTIONS=verify_asan_link_order=0"};
    start();
    EXPECT_TRUE(ends_with(255));
    EXPECT_EQ(level_of("AP_StateManger is aborted:  Resource temporarily unavailable"), 1);
    EXPECT_THAT(texts(Kind::state_word), IsEmpty());
}

TEST_F(Start, Ends_with_status_0_without_input_devices) {
    options.devices = 0;
    start();
    EXPECT_TRUE(ends_with(0));
    auto const logged = texts(Kind::log);
    EXPECT_THAT(logged, Contains("No key event input device found that supports both EV_KEY and EV_MSC"));
    std::vector<std::string> const last_words{"AP_StateManger failed to initialize VirtIO",
                                              "Failed to initialize AP_StateManger!",
                                              "AP_StateManger daemon shutting down"};
    EXPECT_EQ(logged_of(last_words), last_words);
    EXPECT_EQ(level_of("Failed to initialize AP_StateManger!"), 2);
    EXPECT_EQ(level_of("AP_StateManger daemon shutting down"), 4);
    EXPECT_THAT(logged, Not(Contains("AP_StateManger daemon started")));
}

TEST_F(Start, Does_not_start_when_one_of_its_devices_can_not_be_opened) {
    options.devices = 2;
    build();
    machine->hypervisor().command({{"do", "fault"}, {"file", "event1"}, {"operation", "open"}, {"errno", "EACCES"}});
    start();
    EXPECT_TRUE(ends_with(0));
    EXPECT_THAT(texts(Kind::log), Contains("Can't open VirtIO input device:  /dev/input/event1"));
    EXPECT_THAT(texts(Kind::log), Contains("Failed to initialize AP_StateManger!"));
}

}  // namespace
}  // namespace bench::vehicle
