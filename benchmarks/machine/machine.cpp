#include "benchmarks/machine/machine.h"

#include "bench/vehicle/world.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <nlohmann/json.hpp>

namespace benchmarks {

namespace {

void use_network(nlohmann::json& values, unsigned applications) {
    values["StateManagerNMUsage"] = true;
    values["DefautNMRequestPattern"] = {1, 0, 0, 0, 0, 0};
    values["MaxNumberOfApplicationsRequestNetwork"] = applications;
    auto& instances = values["ApplicationsRequestNetworkConfig"] = nlohmann::json::array();
    for (unsigned number = 1; number <= applications; ++number) {
        instances.push_back({{"NetworkAliveInterfaceInstance", std::to_string(number)}});
    }
}

bench::vehicle::Options options(unsigned period_ms, unsigned applications) {
    auto configuration = nlohmann::json::parse(std::ifstream(PROJECT "/deploy/config/ap_statemanager.json"));
    auto& values = configuration["ap_statemanager"];
    values["StateManagerMainPeriod"] = period_ms;
    values["StateManagerNMUsage"] = false;
    if (applications != 0) {
        use_network(values, applications);
    }
    bench::vehicle::Options result;
    result.programs = PROGRAMS;
    result.configuration = configuration.dump();
    result.clients.clear();  // figures of the daemon alone
    return result;
}

}  // namespace

Machine::Machine(unsigned period_ms, unsigned applications) : vehicle_(options(period_ms, applications)) {
    if (applications != 0) {
        network_manager_.emplace(
            std::vector<std::string>{PROGRAMS "/bench/network/bench_network_node", "127.0.0.11", "--offer", "udpnm"});
    }
}

std::unique_ptr<bench::Child_process> Machine::start(std::vector<std::string> const& words) {
    return std::make_unique<bench::Child_process>(
        words, std::vector<std::string>{"DBUS_SYSTEM_BUS_ADDRESS=" + vehicle_.bus().address(),
                                        "NOTIFY_SOCKET=/run/notify", "WATCHDOG_USEC=2000000"});
}

std::unique_ptr<bench::Child_process> Machine::start_daemon(std::vector<std::string> starter) {
    starter.emplace_back(PROGRAMS "/src/main/ap_statemanager");
    return start(starter);
}

std::int64_t Machine::await_word(std::string const& word, std::size_t from) {
    return hypervisor().await_event("write", {{"file", "set_status"}, {"text", word}}, from)["t"];
}

int run_in_world(char const* program, std::function<int()> const& benchmark) {
    try {
        return bench::vehicle::run_inside(PROJECT, [&] {
            int const status = benchmark();
            std::fflush(stdout);  // the process in there ends without it
            return status;
        });
    } catch (std::exception const& error) {
        std::fprintf(stderr, "%s: %s\n", program, error.what());
        return EXIT_FAILURE;
    }
}

}  // namespace benchmarks
