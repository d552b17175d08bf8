#include "target.h"

#include <fstream>
#include <string>
#include <utility>

#include <sched.h>

namespace bench::vm {
namespace {

class Machine_faults : public Target {
 protected:
    /// The keyboard's slot, pulled out and put back.
    static void remove_keyboard() {
        machine().hypervisor().execute("device_del", {{"id", "keyboard"}});
        ASSERT_TRUE(comes_true("test ! -e /dev/input/event0"));
    }
    static void add_keyboard() {
        machine().hypervisor().execute("device_add",
                                       {{"driver", "virtio-keyboard-pci"}, {"id", "keyboard"}, {"bus", "slot1"}});
        ASSERT_TRUE(comes_true("test -e /dev/input/event0"));
    }
};

/// The unit with lines of its own.
class Machine_with_a_drop_in : public Machine_faults {
 protected:
    explicit Machine_with_a_drop_in(std::string lines) : lines_(std::move(lines)) {}

    void SetUp() override {
        Machine_faults::SetUp();
        change("mkdir -p " + k_directory + " && printf '" + lines_ + "' >" + k_directory + "/story.conf");
        start_the_daemon_again();
        ASSERT_TRUE(shows("running"));
        mark();
    }
    void TearDown() override {
        Machine_faults::TearDown();
        change("rm " + k_directory + "/story.conf");
        needs_new_daemon();
    }

 private:
    static void change(std::string const& how) {
        ASSERT_EQ(machine().shell().run(how + " && systemctl daemon-reload").status, 0);
    }

    static inline std::string const k_directory{"/run/systemd/system/ap_statemanager.service.d"};
    std::string const lines_;
};

/// The machine without network management may have a watchdog that is faster than the unit's own.
class Machine_with_a_fast_watchdog : public Machine_with_a_drop_in {
 protected:
    Machine_with_a_fast_watchdog() : Machine_with_a_drop_in("[Service]\\nWatchdogSec=5s\\n") {}
};

/// With the example for machines whose processors are all busy for long.
class Busy_machine : public Machine_with_a_drop_in {
 protected:
    Busy_machine() : Machine_with_a_drop_in(example()) {}

 private:
    static std::string example() {
        std::ifstream file(REAL_TIME_EXAMPLE);
        std::string lines;
        for (std::string line; std::getline(file, line);) {
            lines += line.rfind('#', 0) == 0 ? "" : line + "\\n";
        }
        return lines;
    }
};

TEST_F(Machine_with_a_fast_watchdog, Ends_a_daemon_that_hangs_and_starts_it_again) {
    ASSERT_EQ(property("WatchdogUSec"), "5s");
    auto const restarts = std::stoi(property("NRestarts"));
    machine().signal_daemon(SIGSTOP);
    ASSERT_TRUE(shows("startingup"));
    EXPECT_TRUE(shows("running"));
    EXPECT_NE(machine().await_entry("ap_statemanager.service", "Watchdog timeout (limit 5s)"), nullptr);
    EXPECT_EQ(std::stoi(property("NRestarts")), restarts + 1);
}

TEST_F(Busy_machine, Has_all_threads_of_the_daemon_run_before_the_others) {
    // The 41st member is the policy; the second, the thread's name, ends with the last parenthesis.
    auto const policies = "cat /proc/" + property("MainPID") + "/task/*/stat | sed 's/.*) //' | cut -d ' ' -f 39";
    EXPECT_EQ(output_of(policies + " | sort -u"), std::to_string(SCHED_RR));
    EXPECT_GT(std::stoi(output_of(policies + " | wc -l")), 3);
    machine().press("p");
    EXPECT_TRUE(shows("prepared4sd"));
}

TEST_F(Machine_faults, A_daemon_that_is_killed_is_started_again) {
    machine().signal_daemon(SIGKILL);
    ASSERT_TRUE(ends_by("code=killed, status=9/KILL"));
    ASSERT_TRUE(shows("startingup"));
    EXPECT_TRUE(shows("running"));
}

TEST_F(Machine_faults, A_killed_log_daemon_is_survived_and_written_to_again) {
    auto const daemon = property("MainPID");
    auto const old = output_of("systemctl show --value -p MainPID dlt-daemon.service");
    machine().shell().run("systemctl kill --signal=KILL dlt-daemon.service");
    ASSERT_TRUE(
        comes_true("systemctl is-active --quiet dlt-daemon.service && test \"$(systemctl show --value -p MainPID "
                   "dlt-daemon.service)\" != " +
                   old));
    mark();
    machine().press("p");
    ASSERT_TRUE(shows("prepared4sd"));
    EXPECT_TRUE(logs("AP_StateManger transition from Preparing  to  PreparedSD"));
    EXPECT_EQ(property("MainPID"), daemon);
}

TEST_F(Machine_faults, A_keyboard_that_is_pulled_out_is_survived) {
    auto const daemon = property("MainPID");
    remove_keyboard();
    auto const beat = property("WatchdogTimestampMonotonic");
    EXPECT_TRUE(
        comes_true("test \"$(systemctl show --value -p WatchdogTimestampMonotonic ap_statemanager.service)\" "
                   "-gt " +
                   beat));
    EXPECT_EQ(property("MainPID"), daemon);

    // A restart would not wait: the service manager gives up waiting for a device when nothing but a restart does.
    mark();
    machine().shell().run("systemctl stop ap_statemanager.service; systemctl start --no-block ap_statemanager.service");
    EXPECT_TRUE(comes_true("systemctl list-jobs | grep -q 'ap_statemanager.service *start *waiting'"))
        << "a start waits for the keyboard";
    EXPECT_EQ(property("MainPID"), "0");
    add_keyboard();
    ASSERT_TRUE(shows("running"));
    machine().press("p");
    EXPECT_TRUE(shows("prepared4sd")) << "the keyboard is used again after a restart";
}

}  // namespace
}  // namespace bench::vm
