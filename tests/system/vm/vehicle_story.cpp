#include "target.h"

#include <chrono>
#include <cmath>
#include <string>

namespace bench::vm {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using testing::ElementsAre;

/// The machine with its vehicle: everything starts at the same time, and none of what the daemon asks for meanwhile may
/// get lost.
class Machine_with_its_vehicle : public Target {
 protected:
    void boot(std::string const& more_units = "") {
        auto options = usual_machine();
        options.with_vehicle = true;
        options.kernel_options = more_units;
        switch_off(options);
        mark();
        machine().start_daemon();
    }
    /// As the story before has left it, else booted.
    void go_on() {
        if (!machine().is_on() || machine().applications().empty()) {
            boot();
        } else {
            begin_story();
        }
        ASSERT_TRUE(machine().await(Kind::state_word, "running", 0, k_patience));
    }
    void SetUp() override {}
    static void TearDownTestSuite() { switch_off(); }

    bool suspends() {
        mark();
        machine().press("p");
        return shows("preparing") && shows("prepared4sd") && manager_holds(k_no_bits, k_no_user_data);
    }
    bool resumes() {
        mark();
        machine().press("r");
        return shows("resuming") && shows("running") && manager_holds(k_default_pattern, k_user_data);
    }

    /// Longer than any call.
    static constexpr milliseconds k_standstill{3000};

    /// The hypervisor stops the machine's processors, and its clock with them.
    static void stand_still(milliseconds duration) {
        auto const before = uptime();
        machine().hypervisor().execute("stop");
        machine().watch(duration);
        machine().hypervisor().execute("cont");
        EXPECT_LT(uptime() - before, duration) << "the machine's time went on";
    }

 private:
    static milliseconds uptime() { return milliseconds(std::lround(1000 * std::stod(output_of("cat /proc/uptime")))); }
};

TEST_F(Machine_with_its_vehicle, Loses_no_call_when_it_boots) {
    boot();
    ASSERT_TRUE(shows("running"));
    EXPECT_TRUE(manager_holds(k_default_pattern, k_user_data));
    EXPECT_TRUE(comes_true("systemctl is-active --quiet MachineState-Running.target"));
    EXPECT_THAT(calls_at_manager(), ElementsAre(std::string("SetUserData ") + k_user_data, "ReleaseNetwork ff ff ff 01",
                                                std::string("RequestNetwork ") + k_default_pattern));
}

TEST_F(Machine_with_its_vehicle, Loses_nothing_where_its_time_stands_still) {
    go_on();
    auto const daemon = property("MainPID");
    stand_still(k_standstill);
    EXPECT_TRUE(suspends());
    stand_still(k_standstill);
    EXPECT_TRUE(resumes());
    EXPECT_EQ(property("MainPID"), daemon);
}

TEST_F(Machine_with_its_vehicle, Switches_itself_off_by_a_normal_shutdown) {
    go_on();
    mark();
    machine().press("power");
    ASSERT_TRUE(shows("shuttingdown"));
    ASSERT_TRUE(machine().await_power_off(k_patience));
    EXPECT_TRUE(sees(Kind::machine_state, "Shutdown"));
    EXPECT_TRUE(logs("Normal shutdown executed"));
}

TEST_F(Machine_with_its_vehicle, Is_not_started_again_for_a_network_manager_that_answers_after_1_9_seconds) {
    calls_may_fail();  // on a machine whose answers need another tenth of a second
    boot("systemd.wants=vehicle-network-slow.service");
    ASSERT_TRUE(shows("running"));
    EXPECT_TRUE(manager_holds(k_default_pattern, k_user_data));
    EXPECT_TRUE(suspends());
    EXPECT_EQ(property("NRestarts"), "0");
}

TEST_F(Machine_with_its_vehicle, Switches_itself_off_within_the_budget_of_a_fast_shutdown) {
    go_on();
    if (last_word() != "prepared4sd") {
        ASSERT_TRUE(suspends());
    }
    // A journal that is read too late takes nothing away.
    EXPECT_TRUE(comes_true("systemctl kill --signal=STOP vehicle-journal.service"));
    mark();
    // By the host's clock, since the machine's own can't be read at its end. On a busy host it counts more, and has
    // room: at a load of 12 to 20 on 2 processors the stories took 23 s each, boots included.
    auto const begin = steady_clock::now();
    machine().press("power");
    ASSERT_TRUE(shows("shuttingdown"));
    ASSERT_TRUE(sees(Kind::power_off, "poweroff 60000"));
    ASSERT_TRUE(machine().await_power_off(k_patience));
    EXPECT_LT(steady_clock::now() - begin, milliseconds(60'000));
    EXPECT_TRUE(logs("Fast shutdown executed"));
}

}  // namespace
}  // namespace bench::vm
