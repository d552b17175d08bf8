// One call without arguments from process to process: the ECU-alive service, and beside it in the same run the engine's
// own ping-pong, the same call over a D-Bus, and a bare ping-pong over a Unix socket. Then the service again among idle
// clients and after a client was killed: neither may cost anything.

#include "base/temporary_directory.h"
#include "bench/process/private_bus.h"
#include "benchmarks/communication/found.h"
#include "benchmarks/communication/peer.h"
#include "benchmarks/communication/yardsticks.h"
#include "benchmarks/machine/figures.h"
#include "benchmarks/machine/machine.h"
#include "tarq/com/runtime/component_singleton.h"
#include "ximo/ap/statemanager/state_management_alive_interface_proxy.h"

#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

namespace {

using benchmarks::Peer;
using benchmarks::Samples;
using ximo::ap::statemanager::proxy::StateManagementAliveInterfaceProxy;

constexpr int k_calls = 4'000;
constexpr int k_short_calls = 1'000;
constexpr int k_repetitions = 5;
constexpr int k_warm_up = 200;
constexpr double k_target_beside_engine = 1.4;
constexpr double k_flat = 1.15;

void measure(benchmark::State& state, std::function<void()> const& call, Samples& samples) {
    for (int i = 0; i < k_warm_up; ++i) {
        call();
    }
    while (state.KeepRunning()) {
        auto const before = std::chrono::steady_clock::now();
        call();
        auto const time = std::chrono::steady_clock::now() - before;
        samples.add(std::chrono::nanoseconds(time).count());
        state.SetIterationTime(std::chrono::duration<double>(time).count());
    }
}

Samples run(char const* name, std::function<void()> const& call) {
    Samples samples;
    benchmark::RegisterBenchmark(name, [&](benchmark::State& state) { measure(state, call, samples); })
        ->Iterations(benchmarks::whole_or_short(k_calls, k_short_calls))
        ->Repetitions(k_repetitions)
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond)
        ->ReportAggregatesOnly();
    benchmark::ConsoleReporter reporter;  // the library's own one does not survive a second run
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::ClearRegisteredBenchmarks();
    benchmarks::print(name, samples);
    return samples;
}

Samples socket_call(base::Temporary_directory const& files) {
    auto const path = files.file("ping");
    Peer const server("socket", path);
    benchmarks::Socket_call const call(path);
    return run("Unix socket", [&] { call(); });
}

Samples bus_call(base::Temporary_directory const& files) {
    bench::Private_bus const bus(files.path());
    Peer const server("bus", bus.address());
    benchmarks::Bus_call const call(bus.address());
    return run("D-Bus", [&] { call(); });
}

void compare(double service, double bus) {
    auto const engine = benchmarks::engine_round_trip_us(BENCHMARK_ENGINE_CONFIGURATION);
    benchmarks::tell({"RequestAlive beside D-Bus, median", service, bus, "us", benchmarks::at_most_times(1.0)});
    if (engine) {
        std::cout << "engine's own ping-pong, whole round trip: median " << *engine << " us\n";
        benchmarks::tell({"RequestAlive beside the engine's ping-pong, median", service, *engine, "us",
                          benchmarks::at_most_times(k_target_beside_engine)});
    } else {
        std::cout << "The engine's own ping-pong was not measured: ddsperf (package cyclonedds-tools) told nothing.\n";
    }
}

/// The service among clients that keep a connection and do nothing, and after one of them was killed.
template <class Call>
void tell_beside_others(Call const& call, double alone) {
    std::vector<std::unique_ptr<Peer>> clients;
    for (std::size_t const count : {5, 20, 45}) {
        while (clients.size() < count) {
            clients.push_back(std::make_unique<Peer>("idle", "benchmark"));
        }
        auto const name = "RequestAlive beside " + std::to_string(count) + " idle clients";
        auto const beside = run(name.c_str(), call).median_us();
        benchmarks::tell({name + ", median", beside, alone, "us", benchmarks::at_most_times(k_flat)});
    }
    clients.front()->kill();
    char const* const name = "RequestAlive after a client was killed";
    auto const after = run(name, call).median_us();
    benchmarks::tell({name, after, alone, "us", benchmarks::at_most_times(k_flat)});
}

int run_all() {
    base::Temporary_directory const files;
    auto const socket = socket_call(files);
    auto const bus = bus_call(files);

    tarq::com::runtime::Component_singleton const runtime(false, "");
    Peer const server("alive", "benchmark");
    auto const service = benchmarks::found<StateManagementAliveInterfaceProxy>("benchmark");
    auto const call = [&] { service->RequestAlive().get(); };
    auto const alone = run("RequestAlive", call).median_us();
    std::cout << "RequestAlive / Unix socket: " << alone / socket.median_us() << " times" << std::endl;
    compare(alone, bus.median_us());
    tell_beside_others(call, alone);
    return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    return benchmarks::run_in_world("benchmark_communication", &run_all);
}
