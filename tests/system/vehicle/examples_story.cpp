// The whole programs of examples/ beside a daemon; clients of a suspend are judged by check-client elsewhere.

#include "network_machine.h"
#include "tool.h"

#include <algorithm>
#include <chrono>

namespace bench::vehicle {
namespace {

constexpr std::chrono::seconds k_example_patience{20};

class Examples_story : public Network_story {
 protected:
    static bool is_kept_awake() {
        auto const told = nlohmann::json::parse(statectl({"holds", "--json"}).output);
        auto const& holds = told.at("holds");
        return std::any_of(holds.begin(), holds.end(), [](auto const& hold) { return hold.at("held") == true; });
    }
};

TEST_F(Examples_story, An_application_that_keeps_the_ecu_awake_does_so_over_a_restart_of_the_daemon) {
    start_and_run();
    Companion keep_alive({EXAMPLE_KEEP_ALIVE, "2"});
    EXPECT_TRUE(keep_alive.says("held\n", k_example_patience)) << keep_alive.said;
    EXPECT_TRUE(is_kept_awake());
    machine->signal_daemon(SIGKILL);
    machine->await_end();
    EXPECT_TRUE(keep_alive.says("held\nnot held\n", k_example_patience)) << keep_alive.said;
    machine->start_daemon();
    EXPECT_TRUE(keep_alive.says("held\nnot held\nheld\n", k_example_patience)) << keep_alive.said;
    EXPECT_TRUE(is_kept_awake());
    EXPECT_EQ(keep_alive.end(), 0);
    EXPECT_FALSE(is_kept_awake()) << "released at its end";
}

TEST_F(Examples_story, A_watcher_of_the_network_prints_each_report) {
    start_and_run();
    Companion watcher({EXAMPLE_NETWORK_WATCHER});
    EXPECT_TRUE(watcher.says("01 00 00 00 00 00 \n", k_example_patience)) << watcher.said;
    machine->tell("other node", {{"do", "request"}, {"bits", "00 02"}});
    EXPECT_TRUE(watcher.says("01 02 00 00 00 00 \n", k_example_patience)) << watcher.said;
    EXPECT_EQ(watcher.end(), 0);
}

}  // namespace
}  // namespace bench::vehicle
