// The daemon's services over the communication binding, with a network manager: how soon a client finds all of them,
// and how many requests a second are answered. Everything is a process of its own in a world of its own.

#include "bench/process/player.h"
#include "benchmarks/machine/machine.h"
#include "measurements.h"

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>

namespace benchmarks {

namespace {

bench::vehicle::Options options() {
    auto configuration = nlohmann::json::parse(std::ifstream(PROJECT "/deploy/config/ap_statemanager.json"));
    auto& values = configuration["ap_statemanager"];
    values["StateManagerNMUsage"] = true;
    values["DefautNMRequestPattern"] = {1, 0, 0, 0, 0, 0};
    values["MaxNumberOfApplicationsRequestNetwork"] = k_applications;
    auto& instances = values["ApplicationsRequestNetworkConfig"] = nlohmann::json::array();
    for (int number = 1; number <= k_applications; ++number) {
        instances.push_back({{"NetworkAliveInterfaceInstance", std::to_string(number)}});
    }
    bench::vehicle::Options result;
    result.programs = PROGRAMS;
    result.configuration = configuration.dump();
    return result;
}

int run() {
    bench::vehicle::Vehicle vehicle(options());
    bench::Player const node({PROGRAMS "/bench/network/bench_network_node", "127.0.0.11", "--offer", "udpnm"});
    measure_all_found(vehicle);
    measure_requests(vehicle);
    return EXIT_SUCCESS;
}

}  // namespace

void stop_daemon(bench::vehicle::Vehicle& vehicle) {
    vehicle.signal_daemon(SIGTERM);
    vehicle.await_end();
    vehicle.take_events();
}

}  // namespace benchmarks

int main() {
    return benchmarks::run_in_world("benchmark_services", &benchmarks::run);
}
