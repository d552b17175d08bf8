#include "base/temporary_directory.h"
#include "target.h"

#include <filesystem>
#include <functional>

namespace bench::vm {
namespace {

using nlohmann::json;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

#define RECORDS "/var/lib/ap_statemanager"

/// The machine with a disk, on which the recorder writes.
class Machine_with_a_disk : public Target {
 protected:
    void SetUp() override {}
    static void TearDownTestSuite() {
        switch_off();
        disk.reset();
    }

    static void insert_empty_disk() {
        disk = std::make_unique<base::Temporary_directory>();
        auto options = usual_machine();
        options.disk = disk->file("disk");
        std::filesystem::copy_file(options.image + "/disk", options.disk);
        switch_off(options);
    }
    void switch_on() {
        mark();
        machine().start_daemon();
        ASSERT_TRUE(shows("running"));
    }
    /// As the story before has left it, else booted.
    void go_on() {
        if (!disk || !machine().is_on()) {
            insert_empty_disk();
            switch_on();
        }
        begin_story();
    }

    /// The emulator is killed once the recorder has the state on the disk, or says that it may be there.
    void lose_power_in(std::string const& state) {
        ASSERT_TRUE(comes_to(state));
        machine().cut_power();
        ASSERT_TRUE(ends_by("the emulator is gone"));
    }

    /// The emulator is killed in the state to which these steps lead; the next boot tells it.
    void goes_down_in(std::string const& state, std::function<void()> const& lead_there) {
        SCOPED_TRACE(state);
        lead_there();
        ASSERT_FALSE(HasFatalFailure());
        ASSERT_NO_FATAL_FAILURE(lose_power_in(state));
        ASSERT_NO_FATAL_FAILURE(switch_on());
        EXPECT_EQ(last(), "went down in " + state);
    }
    void suspend() {
        mark();
        machine().press("p");
        ASSERT_TRUE(shows("prepared4sd"));
    }
    /// The daemon of a machine on which others need the network, if there is a manager for it.
    void start_with_network(bool has_manager) {
        if (has_manager) {
            machine().shell().run(
                "systemctl restart vehicle-network-manager.service vehicle-network-neighbour.service");
            others_need_network(true);
        }
        machine().shell().run("cp /etc/vehicle/with-network.json /etc/adaptive/ap_statemanager.json");
        start_the_daemon_again();
        ASSERT_TRUE(shows(has_manager ? "running" : "startingup"));
    }
    static void others_need_network(bool needed) {
        machine().tell("other node", {{"do", needed ? "request" : "release"}, {"bits", "80"}});
    }

    static void start_client(std::string const& name, json behaviour) {
        machine().shell().run("systemctl start vehicle-client@" + name + ".service");
        behaviour["do"] = "behave";
        machine().tell(name, behaviour);
    }

    static json told(std::string const& subcommand) {
        return json::parse(output_of("ap_statectl " + subcommand + " --json"), nullptr, false);
    }
    static std::string end_of(json const& cycle) {
        return cycle.is_object() ? cycle.value("end_word", "") + " in " + cycle.value("state", "") : cycle.dump();
    }
    static std::string last() { return end_of(told("last")); }
    static std::vector<std::string> history() {
        std::vector<std::string> ends;
        auto const history = told("history");
        for (auto const& cycle : history.at("cycles")) {
            ends.push_back(end_of(cycle));
        }
        return ends;
    }

    static Entry const* recorder_says(std::string const& words, std::size_t from) {
        return machine().await_entry("ap_statemanager_recorder.service", words, from, k_patience);
    }
    static std::string recorders(std::string const& property) {
        return output_of("systemctl show --value -p " + property + " ap_statemanager_recorder.service");
    }

    /// A power cycle while the disk takes nothing, which is told from that entry on and recorded after the cure.
    void suspend_and_resume_before(std::string const& cure, std::size_t from) {
        mark();
        machine().press("p");
        ASSERT_TRUE(shows("prepared4sd"));
        ASSERT_NE(recorder_says("Read-only file system", from), nullptr);
        machine().press("r");
        ASSERT_TRUE(shows("running"));
        ASSERT_EQ(machine().shell().run(cure).status, 0);
        ASSERT_TRUE(comes_to("Running"));
        EXPECT_EQ(last(), "suspended in PreparedSD");
    }

    /// Whether the state comes to be recorded. Preparing is on the disk as soon as the recorder waits again, and every
    /// other state a second later.
    static bool comes_to(std::string const& state) {
        auto const waits = std::string(R"(grep -q futex "/proc/$(pidof ap_statemanager_recorder)/wchan")");
        auto const newest = std::string(R"(ap_statectl history -n 1 --json | tr -d '\n' | grep -q )");
        return comes_true(newest + R"('"end_word": "running".*"state": ")" + state + "\"'") &&
               (state == "Preparing" || output_of("sleep 3").empty()) && comes_true(waits);
    }

    static std::unique_ptr<base::Temporary_directory> disk;
};

std::unique_ptr<base::Temporary_directory> Machine_with_a_disk::disk;

/// Both have to know the same time, and the machine's own one is long.
std::string watchdog_of_5_s() {
    auto const change = [](std::string const& unit, std::string const& lines) {
        auto const directory = "/run/systemd/system/" + unit + ".service.d";
        return "mkdir -p " + directory + " && printf '[Service]\\n" + lines + "' >" + directory + "/watchdog.conf && ";
    };
    return change("ap_statemanager", "WatchdogSec=5s\\n") +
           change("ap_statemanager_recorder",
                  "ExecStart=\\nExecStart=/usr/sbin/ap_statemanager_recorder --watchdog 5\\n") +
           "systemctl daemon-reload && systemctl restart ap_statemanager_recorder.service";
}

TEST_F(Machine_with_a_disk, Tells_after_each_boot_how_the_power_cycle_before_it_ended) {
    insert_empty_disk();
    switch_on();
    ASSERT_EQ(machine().shell().run(watchdog_of_5_s()).status, 0);
    start_the_daemon_again();
    ASSERT_TRUE(shows("running"));
    mark();
    machine().signal_daemon(SIGSTOP);
    ASSERT_TRUE(shows("running"));
    EXPECT_TRUE(comes_true("ap_statectl last | grep -q '^watchdog in Running'")) << last();
    lose_power_in("Running");

    switch_on();
    EXPECT_EQ(last(), "went down in Running");
    start_client("radio", {{"as", "silent"}});
    machine().press("p");
    lose_power_in("Preparing");

    switch_on();
    EXPECT_EQ(last(), "went down in Preparing");
    start_client("radio", {{"as", "late"}, {"delay_ms", 1500}});
    machine().press("p");
    ASSERT_TRUE(shows("prepared4sd"));
    machine().press("power");
    ASSERT_TRUE(machine().await_power_off(k_patience));

    switch_on();
    EXPECT_EQ(last(), "fast in Shutting down");
    EXPECT_THAT(output_of("ap_statectl blame"), AllOf(HasSubstr("the suspend took "), HasSubstr("\"radio\"\n")));
    machine().press("power");
    ASSERT_TRUE(machine().await_power_off(k_patience));

    switch_on();
    EXPECT_EQ(last(), "normal in Shutting down");
    EXPECT_THAT(history(), ElementsAre("signal in Running", "watchdog in Running", "went down in Running",
                                       "went down in Preparing", "fast in Shutting down", "normal in Shutting down",
                                       "running in Running"));
}

TEST_F(Machine_with_a_disk, Tells_after_each_boot_in_which_state_the_power_went) {
    go_on();
    goes_down_in("PreparedSD", [this] { suspend(); });
    goes_down_in("Resuming", [this] {
        start_client("radio", {{"as", "well"}});
        suspend();
        machine().tell("radio", {{"do", "behave"}, {"as", "silent"}});
        machine().press("r");
        ASSERT_TRUE(shows("resuming"));
    });
    goes_down_in("Starting up", [this] { start_with_network(false); });
    goes_down_in("NM Controlled", [this] {
        start_with_network(true);
        machine().press("s");
        ASSERT_TRUE(shows("runnmcontrolled"));
    });
    goes_down_in("Post Run", [this] {
        start_with_network(true);
        ASSERT_EQ(machine().shell().run("ap_statectl ecu-alive request 2 --wait 30000").status, 0);
        machine().press("s");
        ASSERT_TRUE(shows("runnmcontrolled"));
        others_need_network(false);
        ASSERT_TRUE(shows("postrun"));
    });

    // Who switches the machine off and whoever cuts its power then are the same to the recorder.
    machine().shell().run("systemctl kill --signal=STOP ap_power_off.service");
    ASSERT_NO_FATAL_FAILURE(suspend());
    machine().press("power");
    ASSERT_TRUE(shows("shuttingdown"));
    ASSERT_NO_FATAL_FAILURE(lose_power_in("Shutting down"));
    ASSERT_NO_FATAL_FAILURE(switch_on());
    EXPECT_EQ(last(), "fast in Shutting down");
}

TEST_F(Machine_with_a_disk, That_becomes_read_only_under_the_recorder_takes_everything_when_it_is_writable_again) {
    go_on();
    auto const pid = recorders("MainPID");
    auto const from = machine().journal().size();
    // As the kernel does with a disk that fails.
    ASSERT_EQ(machine().shell().run("echo u >/proc/sysrq-trigger").status, 0);
    ASSERT_TRUE(comes_true("grep -q ' " RECORDS " ext4 ro' /proc/mounts"));
    suspend_and_resume_before("mount -o remount,rw " RECORDS, from);
    EXPECT_NE(recorder_says("all is well again", from), nullptr);
    EXPECT_EQ(recorders("MainPID"), pid);
}

// The service manager gives the recorder the file systems as they are when it starts it.
TEST_F(Machine_with_a_disk,
       That_is_read_only_when_the_recorder_starts_takes_everything_when_it_starts_on_a_writable_one) {
    go_on();
    auto const stop = "systemctl stop ap_statemanager_recorder.service";
    ASSERT_EQ(machine().shell().run(stop).status, 0);
    ASSERT_EQ(machine().shell().run("mount -o remount,ro " RECORDS).status, 0);
    auto const from = machine().journal().size();
    ASSERT_EQ(machine().shell().run("systemctl start ap_statemanager_recorder.service").status, 0);
    suspend_and_resume_before("mount -o remount,rw " RECORDS " && systemctl restart ap_statemanager_recorder.service",
                              from);
    EXPECT_EQ(recorders("NRestarts"), "0");
}

}  // namespace
}  // namespace bench::vm
