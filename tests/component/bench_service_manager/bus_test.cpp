#include "bus_client.h"
#include "managed_fixture.h"

#include <chrono>
#include <cstdlib>

#include <gmock/gmock.h>
#include <signal.h>

namespace bench::service_manager {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::chrono_literals;

constexpr char const* k_running = "MachineState-Running.target";
constexpr char const* k_no_such_unit = "org.freedesktop.systemd1.NoSuchUnit";

class Bus_test : public Managed_fixture {
 protected:
    Bus_client client{bus.address()};
};

TEST_F(Bus_test, A_unit_is_started_and_its_job_ends_with_a_signal) {
    EXPECT_EQ(client.start(k_running), "/org/freedesktop/systemd1/job/1");
    EXPECT_EQ(client.await_job(), std::string(k_running) + " done");
    EXPECT_THAT(client.signals(),
                ElementsAre("JobNew", "PropertiesChanged", "PropertiesChanged", "PropertiesChanged", "JobRemoved"));
}

TEST_F(Bus_test, A_unit_can_be_stopped) {
    client.call("StopUnit", {"MachineState-Startup.target", "replace"});
    EXPECT_EQ(client.await_job(), "MachineState-Startup.target done");
    EXPECT_THAT(client.list("active", "*"), IsEmpty());
}

TEST_F(Bus_test, A_caller_that_has_gone_is_refused) {
    sut.command({{"do", "reaction"}, {"delay_ms", 200}});
    Bus_client(bus.address()).call("StartUnit", {k_running, "replace"}, 50);
    sut.await_event("refused", {{"unit", k_running}});
    EXPECT_THAT(client.list("active", "MachineState-*.target"), ElementsAre("MachineState-Startup.target"));
}

TEST_F(Bus_test, A_method_that_is_not_played_is_unknown) {
    EXPECT_EQ(client.call("Reload", {}), "org.freedesktop.DBus.Error.UnknownMethod");
    EXPECT_EQ(client.call("Subscribe", {}), "");
}

TEST_F(Bus_test, An_answer_is_held_back_as_long_as_told) {
    sut.command({{"do", "reaction"}, {"delay_ms", 100}});
    auto const start = std::chrono::steady_clock::now();
    EXPECT_EQ(client.start(k_running), "/org/freedesktop/systemd1/job/1");
    EXPECT_GE(std::chrono::steady_clock::now() - start, 100ms);
}

TEST_F(Bus_test, A_property_is_held_back_like_a_method) {
    sut.command({{"do", "reaction"}, {"method", "Get"}, {"delay_ms", 100}});
    auto const start = std::chrono::steady_clock::now();
    EXPECT_EQ(client.active_state("/org/freedesktop/systemd1/unit/MachineState_2dStartup_2etarget"), "active");
    EXPECT_GE(std::chrono::steady_clock::now() - start, 100ms);
}

TEST_F(Bus_test, A_unit_is_activating_while_its_job_lasts) {
    sut.command({{"do", "reaction"}, {"job_delay_ms", 60'000}});
    client.start(k_running);
    EXPECT_EQ(client.active_state(client.call("GetUnit", {k_running})), "activating");
    EXPECT_THAT(client.list("active", "MachineState-*.target"), ElementsAre("MachineState-Startup.target"));
}

TEST_F(Bus_test, A_job_fails_when_told_so) {
    sut.command({{"do", "reaction"}, {"job_result", "failed"}});
    client.start(k_running);
    EXPECT_EQ(client.await_job(), std::string(k_running) + " failed");
    EXPECT_EQ(client.active_state(client.call("GetUnit", {k_running})), "failed");
}

TEST_F(Bus_test, An_inactive_unit_of_no_loaded_group_is_not_told_until_it_is_loaded) {
    sut.command({{"do", "set_unit"}, {"unit", "Other-Running.target"}, {"active", "inactive"}});
    EXPECT_EQ(client.call("GetUnit", {"Other-Running.target"}), k_no_such_unit);
    EXPECT_THAT(client.list("", "Other-*"), IsEmpty());
    EXPECT_THAT(client.list("", k_running), ElementsAre(k_running)) << "inactive as well, but of a loaded group";
    std::string const path = "/org/freedesktop/systemd1/unit/Other_2dRunning_2etarget";
    EXPECT_EQ(client.call("LoadUnit", {"Other-Running.target"}), path);
    EXPECT_THAT(client.list("", "Other-*"), ElementsAre("Other-Running.target"));
}

TEST_F(Bus_test, The_end_of_the_commands_ends_it_with_status_0_and_frees_the_name) {
    sut.process().close_input();
    EXPECT_EQ(sut.process().wait(10s), 0);
    auto const deadline = std::chrono::steady_clock::now() + 10s;
    auto answer = client.start(k_running);
    while (answer == "org.freedesktop.DBus.Error.NoReply" && std::chrono::steady_clock::now() < deadline) {
        answer = client.start(k_running);  // the bus had not noticed yet
    }
    EXPECT_EQ(answer, "org.freedesktop.DBus.Error.ServiceUnknown");
}

TEST(Bus_address_test, Without_a_bus_of_the_vehicle_it_refuses_to_start) {
    base::Temporary_directory const directory;
    Child_process process({"env", "-u", "DBUS_SYSTEM_BUS_ADDRESS", BENCH_SERVICE_MANAGER, directory.file("notify")},
                          {});
    EXPECT_EQ(process.wait(10s), 1);
}

}  // namespace
}  // namespace bench::service_manager
