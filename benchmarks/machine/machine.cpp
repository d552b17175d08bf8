#include "benchmarks/machine/machine.h"

#include "bench/hypervisor/fuse_requirements.h"
#include "benchmarks/machine/private_machine.h"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <thread>

namespace benchmarks {

namespace {

using nlohmann::json;

constexpr int k_period_ms = 100;
constexpr char const* k_watchdog_us = "2000000";

void prepare(std::string const& scratch) {
    if (std::string const missing = bench::hypervisor::missing_for_fuse(); !missing.empty()) {
        throw std::runtime_error(missing);
    }
    enter_private_machine(scratch);
    for (char const* directory : {"vehicle", "dlt"}) {
        std::filesystem::create_directories(scratch + "/" + directory);
    }
}

}  // namespace

Machine::Machine() {
    prepare(scratch_.path());
    hypervisor_ = std::make_unique<bench::Player>(std::vector<std::string>{BENCH_HYPERVISOR, scratch_.file("vehicle")});
    bind_directory(scratch_.file("vehicle/input"), "/dev/input");
    bus_ = std::make_unique<bench::Private_bus>(scratch_.path());
    service_manager_ =
        std::make_unique<bench::Player>(std::vector<std::string>{BENCH_SERVICE_MANAGER, scratch_.file("notify")},
                                        std::vector<std::string>{"DBUS_SYSTEM_BUS_ADDRESS=" + bus_->address()});
    start_dlt();
    write_configuration();
}

void Machine::write_configuration() const {
    json const instance = json::array({{{"EcuAliveInterfaceInstance", "ecu"}}});
    json const configuration{
        {"KnockOutTimer", 3},
        {"StateManagerNMUsage", false},
        {"RequestNetworkOnEntryRunState", false},
        {"StateManagerMainPeriod", k_period_ms},
        {"ApplicationSuspendRequestTimeout", 60},
        {"DMSuspendRequestTimeout", 60},
        {"PMSuspendRequestTimeout", 60},
        {"AliveSupervisionInstanceId", "benchmark"},
        {"SharedMemoryConfig",
         {{"UpdateStatusFile", status_file()}, {"RestartCommandFile", scratch_.file("vehicle/vmctl/command_request")}}},
        {"DefautNMRequestPattern", json::array({0, 0, 0, 0, 0, 0})},
        {"MaxNumberOfApplicationsRequestAlive", 1},
        {"ApplicationsRequestAliveConfig", instance},
        {"MaxNumberOfApplicationsRequestNetwork", 1},
        {"ApplicationsRequestNetworkConfig", {{{"NetworkAliveInterfaceInstance", "network"}}}},
        {"MaxNumberOfCWURequest", 1},
        {"CWURequestConfig", {{{"CWUInterfaceInstance", "wake-up"}}}}};
    for (char const* name : {"ap_statemanager.json", "ap_statemanager_hk.json", "ap_statemanager_jo.json"}) {
        std::ofstream(std::string("/etc/adaptive/") + name) << json{{"ap_statemanager", configuration}};
    }
}

void Machine::start_dlt() {
    std::string const directory = scratch_.file("dlt");
    std::ofstream(directory + "/dlt.conf")
        << "LoggingMode = 2\nLoggingFilename = " << directory << "/daemon.log\nControlSocketPath = " << directory
        << "/control\nContextLogLevel = 4\nBindAddress = ::ffff:127.0.0.1\n";
    dlt_ = std::make_unique<bench::Child_process>(
        std::vector<std::string>{"dlt-daemon", "-c", directory + "/dlt.conf", "-t", directory},
        std::vector<std::string>{"DLT_PIPE_DIR=" + directory});
    for (int turn = 0; turn < 1000 && !std::filesystem::exists(directory + "/dlt"); ++turn) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

std::unique_ptr<bench::Child_process> Machine::start(std::vector<std::string> const& words) const {
    return std::make_unique<bench::Child_process>(
        words, std::vector<std::string>{
                   "DBUS_SYSTEM_BUS_ADDRESS=" + bus_->address(), "NOTIFY_SOCKET=" + scratch_.file("notify"),
                   std::string("WATCHDOG_USEC=") + k_watchdog_us, "DLT_PIPE_DIR=" + scratch_.file("dlt")});
}

std::unique_ptr<bench::Child_process> Machine::start_daemon() const {
    return start({AP_STATEMANAGER});
}

std::int64_t Machine::await_word(std::string const& word, std::size_t from) {
    return hypervisor_->await_event("write", {{"file", "set_status"}, {"text", word}}, from)["t"];
}

}  // namespace benchmarks
