// The daemon as it is, on a platform that has no log daemon, no service manager and no communication engine.

#include "bench/vehicle/vehicle.h"
#include "support/eventually.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace bench::vehicle {
namespace {

using testing::ElementsAre;
using testing::Not;

constexpr char const* k_told = "/tmp/told";

/// Only a hypervisor and a file, empty yet, for what the daemon tells its platform.
Options surroundings(bool uses_network) {
    std::filesystem::remove(k_told);
    std::ifstream file(VEHICLE_PROJECT "/deploy/config/ap_statemanager.json");
    auto configuration = nlohmann::json::parse(file);
    configuration["ap_statemanager"]["StateManagerNMUsage"] = uses_network;
    Options options;
    options.programs = VEHICLE_BUILD;
    options.configuration = configuration.dump();
    options.with_log = false;
    options.with_service_manager = false;
    options.with_power_off_service = false;
    options.clients = {};
    options.daemon_starter = {"sh", "-c", std::string("exec env LD_PRELOAD=" TOLD_CALLS " " DAEMON " 2>") + k_told};
    return options;
}

/// Of what was told, the lines that the test is about, in order.
std::vector<std::string> told(std::vector<std::string> const& wanted) {
    std::vector<std::string> lines;
    std::ifstream file(k_told);
    for (std::string line; std::getline(file, line);) {
        if (std::find(wanted.begin(), wanted.end(), line) != wanted.end() && (lines.empty() || lines.back() != line)) {
            lines.push_back(line);
        }
    }
    return lines;
}

/// Waits until a line was told so often.
bool is_told(std::string const& line, long times) {
    return test_support::eventually([&] {
        std::ifstream file(k_told);
        std::string const text{std::istreambuf_iterator<char>(file), {}};
        long seen = 0;
        for (auto at = text.find(line); at != std::string::npos; at = text.find(line, at + 1)) {
            ++seen;
        }
        return seen >= times;
    });
}

std::vector<std::string> state_words(Machine const& machine) {
    std::vector<std::string> words;
    for (auto const& event : machine.events()) {
        if (event.kind == Kind::state_word) {
            words.push_back(event.text);
        }
    }
    return words;
}

TEST(On_a_second_platform, The_daemon_starts_suspends_resumes_and_ends) {
    Vehicle machine(surroundings(false));
    machine.start_daemon();
    ASSERT_TRUE(machine.await(Kind::state_word, "running"));
    machine.press("p");
    ASSERT_TRUE(machine.await(Kind::state_word, "prepared4sd"));
    machine.press("r");
    ASSERT_TRUE(machine.await(Kind::state_word, "resuming"));
    ASSERT_TRUE(is_told("exec MachineState Running", 2));
    machine.signal_daemon(SIGTERM);
    EXPECT_EQ(machine.await_end(), 0);

    EXPECT_THAT(state_words(machine),
                ElementsAre("startingup", "running", "preparing", "prepared4sd", "resuming", "running"));
    std::vector<std::string> const life{"com offer ximo::ap::statemanager::DSAInterface DSA_Interface",
                                        "exec running",
                                        "log info DFLT AP_StateManger daemon started",
                                        "exec MachineState Running",
                                        "log info DFLT New command received PrepareSD",
                                        "log info DFLT SIGTERM received!",
                                        "com withdraw ximo::ap::statemanager::DSAInterface DSA_Interface",
                                        "exec terminating",
                                        "log info DFLT AP_StateManger daemon shutting down"};
    auto lines = life;
    lines.insert(lines.begin() + 5, "exec MachineState Running");  // once more, after the resume
    EXPECT_EQ(told(life), lines);
    EXPECT_THAT(told({"phm ap_statemanager 1"}), Not(testing::IsEmpty()));
}

TEST(On_a_second_platform, A_network_manager_that_nobody_offers_is_waited_for) {
    Vehicle machine(surroundings(true));
    machine.start_daemon();
    ASSERT_TRUE(machine.await(Kind::state_word, "startingup"));
    EXPECT_FALSE(machine.await(Kind::state_word, "running", 0, std::chrono::milliseconds(500)));
    machine.signal_daemon(SIGTERM);
    EXPECT_EQ(machine.await_end(), 0);

    EXPECT_THAT(told({"com find tarq::udpnm::interface::NetworkStateInterface",
                      "log warn DFLT Could not find NetworkState service", "exec MachineState Running"}),
                ElementsAre("com find tarq::udpnm::interface::NetworkStateInterface",
                            "log warn DFLT Could not find NetworkState service"));
}

/// The lines that tell of something made, the runtime's end and the end of main, in order.
std::vector<std::string> told_of_making() {
    std::vector<std::string> lines;
    std::ifstream file(k_told);
    for (std::string line; std::getline(file, line);) {
        for (auto const* const beginning :
             {"com start", "com end", "com skeleton", "log init", "exec client", "exec application",
              "phm ap_statemanager", "signal ", "made ", "log info DFLT Configuration for",
              "log info DFLT AP_StateManger daemon shutting down"}) {
            if (line.rfind(beginning, 0) == 0 && line != "phm ap_statemanager 1") {
                lines.push_back(line.substr(0, line.find(" hostname")));
            }
        }
    }
    return lines;
}

std::string skeleton(std::string const& interface, std::string const& instance) {
    return "com skeleton ximo::ap::statemanager::" + interface + " " + instance;
}

TEST(On_a_second_platform, The_daemon_makes_everything_in_its_order_whatever_its_arguments) {
    auto options = surroundings(true);
    auto configuration = nlohmann::json::parse(options.configuration);
    auto& settings = configuration["ap_statemanager"];
    settings["MaxNumberOfApplicationsRequestAlive"] = settings["MaxNumberOfApplicationsRequestNetwork"] =
        settings["MaxNumberOfCWURequest"] = 2;
    settings["ApplicationsRequestAliveConfig"] = {{{"EcuAliveInterfaceInstance", "door"}}};
    settings["ApplicationsRequestNetworkConfig"] = {{{"NetworkAliveInterfaceInstance", "radio"}},
                                                    {{"NetworkAliveInterfaceInstance", "phone"}}};
    settings["CWURequestConfig"] = {{{"CWUInterfaceInstance", "alarm"}}, {{"CWUInterfaceInstance", "radio"}}};
    options.configuration = configuration.dump();
    options.daemon_starter.back().insert(options.daemon_starter.back().find(" 2>"), " --help -v /nowhere");
    Vehicle machine(options);
    machine.start_daemon();
    ASSERT_TRUE(is_told("exec running", 1));
    machine.signal_daemon(SIGTERM);
    EXPECT_EQ(machine.await_end(), 0);

    EXPECT_THAT(
        told_of_making(),
        ElementsAre("com start ''", "log init STMG, ORVAX State Manager, 6, 1, ''", "log info DFLT Configuration for",
                    "signal 6", "signal 2", "signal 15", "made Nm_interface",
                    skeleton("StateManagementComAliveInterface", "radio"),
                    skeleton("StateManagementComAliveInterface", "phone"),
                    skeleton("StateManagementCWUInterface", "alarm"), skeleton("StateManagementCWUInterface", "radio"),
                    skeleton("DSAInterface", "DSA_Interface"), skeleton("StateManagementAliveInterface", "door"),
                    "exec client", "made Virtio_interface", "phm ap_statemanager", "exec application",
                    "log info DFLT AP_StateManger daemon shutting down", "com end"));
}

}  // namespace
}  // namespace bench::vehicle
