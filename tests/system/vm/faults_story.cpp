#include "target.h"

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

TEST_F(Machine_faults, A_daemon_that_hangs_is_ended_by_the_watchdog_and_started_again) {
    auto const restarts = std::stoi(property("NRestarts"));
    machine().signal_daemon(SIGSTOP);
    ASSERT_TRUE(shows("startingup"));
    EXPECT_TRUE(shows("running"));
    EXPECT_NE(machine().await_entry("ap_statemanager.service", "Watchdog timeout"), nullptr);
    EXPECT_EQ(std::stoi(property("NRestarts")), restarts + 1);
}

TEST_F(Machine_faults, A_daemon_that_is_killed_is_started_again) {
    machine().signal_daemon(SIGKILL);
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
    add_keyboard();
    start_the_daemon_again();
    ASSERT_TRUE(shows("running"));
    machine().press("p");
    EXPECT_TRUE(shows("prepared4sd")) << "the keyboard is used again after a restart";
}

}  // namespace
}  // namespace bench::vm
