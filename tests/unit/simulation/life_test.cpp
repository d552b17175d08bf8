// The simulated machine: the daemon's own code through a life.

#include "simulation/life.h"

#include <chrono>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace simulation {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

constexpr char const* k_configuration = R"({"ap_statemanager": {
    "KnockOutTimer": 30, "StateManagerNMUsage": true, "RequestNetworkOnEntryRunState": true,
    "StateManagerMainPeriod": 100, "ApplicationSuspendRequestTimeout": 10, "DMSuspendRequestTimeout": 5,
    "PMSuspendRequestTimeout": 60, "AliveSupervisionInstanceId": "ap_statemanager",
    "SharedMemoryConfig": {"UpdateStatusFile": "/sys/vmctl/set_status", "RestartCommandFile": "/sys/vmctl/command_request"},
    "NmUserDataConfig": {"UserDataBytes": 6, "CWUBitPosition": 6, "ACOffset": 1, "ACBytes": 2, "CABOffset": 3,
        "CABBytes": 3, "MaxCABSizeBits": 24, "CabBitsEnabled": true},
    "DefautNMRequestPattern": [0, 0, 1, 0, 0, 0],
    "MaxNumberOfApplicationsRequestAlive": 1,
    "ApplicationsRequestAliveConfig": [{"EcuAliveInterfaceInstance": "navigation"}],
    "MaxNumberOfApplicationsRequestNetwork": 1,
    "ApplicationsRequestNetworkConfig": [{"NetworkAliveInterfaceInstance": "navigation"}],
    "MaxNumberOfCWURequest": 1,
    "CWURequestConfig": [{"CWUInterfaceInstance": "navigation"}]}})";

std::vector<std::string> of_kind(Timeline const& timeline, Kind kind) {
    std::vector<std::string> found;
    for (auto const& entry : timeline) {
        if (entry.kind == kind) {
            found.push_back(kind == Kind::state ? entry.who : entry.what);
        }
    }
    return found;
}

std::string text_of(Timeline const& timeline) {
    std::string text;
    for (auto const& entry : timeline) {
        text += std::to_string(entry.at.count()) + ' ' + name(entry.kind) + ' ' + entry.who + ": " + entry.what + '\n';
    }
    return text;
}

/// Left to the network, through Post Run into a suspend in which each client has its own manner, and the fast end.
Timeline suspends_and_ends(std::string const& configuration) {
    Life life({configuration});
    life.clients().connect("diag::dcm", {Client_manner::Answer::succeeds, 100ms});
    life.clients().connect("radio", {Client_manner::Answer::succeeds, 3s});
    life.clients().connect("tuner", {Client_manner::Answer::silent});
    life.clients().connect("diag::dem", {Client_manner::Answer::fails, 50ms});
    auto& events = life.events();
    events.at(1s, [&] { life.applications().request_ecu("navigation"); });
    events.at(2s, [&] { life.hypervisor().press("s"); });
    events.at(5s, [&] { life.applications().release_ecu("navigation"); });
    events.at(30s, [&] { life.hypervisor().press("power"); });
    life.run(60s);
    return life.timeline();
}

TEST(A_simulated_life, Goes_through_a_suspend_as_the_daemon_does) {
    auto const timeline = suspends_and_ends(k_configuration);
    SCOPED_TRACE(text_of(timeline));
    EXPECT_THAT(of_kind(timeline, Kind::word), ElementsAre("startingup", "running", "runnmcontrolled", "postrun",
                                                           "preparing", "prepared4sd", "shuttingdown"));
    EXPECT_THAT(of_kind(timeline, Kind::power_off),
                ElementsAre("lookup vyn_per_daemon", "terminate", "poweroff 60000"));
    EXPECT_THAT(of_kind(timeline, Kind::end), ElementsAre("power off"));
    EXPECT_EQ(timeline.back().kind, Kind::end);
}

TEST(A_simulated_life, Is_the_same_each_time) {
    EXPECT_EQ(text_of(suspends_and_ends(k_configuration)), text_of(suspends_and_ends(k_configuration)));
}

TEST(A_simulated_life, Is_not_begun_with_a_configuration_that_the_daemon_refuses) {
    EXPECT_THROW(Life({R"({"ap_statemanager": {"KnockOutTimer": "x"}})"}), std::runtime_error);
    EXPECT_THROW(Life({"{"}), std::runtime_error);
}

}  // namespace
}  // namespace simulation
