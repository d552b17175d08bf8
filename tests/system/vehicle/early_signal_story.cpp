#include "story.h"

namespace bench::vehicle {
namespace {

using testing::Contains;
using testing::Not;

/// A daemon that gets SIGTERM at one moment of its start.
class Early_signal : public Story {
 protected:
    static constexpr int k_not_allowed = 77;

    void SetUp() override {
        Child_process probe({SIGNAL_AT_CALL, "probe", "/bin/true"}, {});
        if (probe.wait(Vehicle::k_patience) == k_not_allowed) {
            GTEST_SKIP() << "A process may not be watched here; the reason stands above";
        }
        std::filesystem::remove("/tmp/signalled");
    }

    void start_with_signal_at(char const* moment) {
        options.daemon_starter = {SIGNAL_AT_CALL, moment};
        start_and_run();
        ASSERT_TRUE(std::filesystem::exists("/tmp/signalled"));
    }

    void expect_that_it_cycles_until_the_next_signal() {
        EXPECT_TRUE(machine->await(Kind::watchdog, "WATCHDOG", machine->events().size() + 2));
        machine->signal_daemon(SIGTERM);
        EXPECT_TRUE(ends_with(0));
    }
};

TEST_F(Early_signal, Before_there_is_a_driver_is_ignored_without_a_message) {
    start_with_signal_at("handlers-installed");
    EXPECT_THAT(texts(Kind::log), Not(Contains("SIGTERM received!")));
    expect_that_it_cycles_until_the_next_signal();
}

TEST_F(Early_signal, While_the_driver_initialises_is_told_and_lost) {
    start_with_signal_at("first-word");
    EXPECT_TRUE(logs("SIGTERM received!"));
    EXPECT_TRUE(logs("Shutting down AP_StateManger"));
    expect_that_it_cycles_until_the_next_signal();
}

// No handler is installed before the configuration is known to be good.
TEST_F(Early_signal, Finds_no_handler_in_a_daemon_that_ends_for_its_configuration) {
    options.configuration = "{}";
    options.daemon_starter = {SIGNAL_AT_CALL, "handlers-installed"};
    start();
    EXPECT_TRUE(ends_with(255));
    EXPECT_FALSE(std::filesystem::exists("/tmp/signalled"));
}

}  // namespace
}  // namespace bench::vehicle
