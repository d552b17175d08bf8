// One call without arguments from process to process: the ECU-alive service, and in turn with it the same call on the
// engine alone, over a D-Bus, and over a Unix socket; beside them the engine's own ping-pong, which has fewer
// hand-overs between threads. Then the service again among idle clients and after a client was killed: neither may cost
// anything.

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
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace {

using benchmarks::Peer;
using benchmarks::Samples;
using ximo::ap::statemanager::proxy::StateManagementAliveInterfaceProxy;

constexpr int k_turns = 10;
constexpr int k_turns_in_short = 5;
constexpr int k_calls_in_a_turn = 1'000;
constexpr int k_warm_up = 200;
constexpr double k_flat = 1.15;
constexpr double k_tail = 3.0;

using Call = std::function<void()>;

/// One way to call, and how long each call took.
struct Path {
    std::string name;
    Call call;
    Samples samples{};
};

void call_in_a_row(Path& path) {
    for (int i = 0; i < k_warm_up; ++i) {
        path.call();
    }
    for (int i = 0; i < k_calls_in_a_turn; ++i) {
        auto const before = std::chrono::steady_clock::now();
        path.call();
        path.samples.add(std::chrono::nanoseconds(std::chrono::steady_clock::now() - before).count());
    }
}

/// Whatever else the machine does meanwhile falls on all of them.
void take_turns(std::vector<Path>& paths) {
    for (int turn = 0; turn < benchmarks::whole_or_short(k_turns, k_turns_in_short); ++turn) {
        for (auto& path : paths) {
            call_in_a_row(path);
        }
    }
    for (auto const& path : paths) {
        benchmarks::print(path.name, path.samples);
    }
}

/// A call of the service beside the same on the engine alone, at the same time.
struct Figures {
    Samples service;
    Samples engine;
};

Figures measure(std::string const& name, Call const& service, Call const& engine) {
    std::vector<Path> paths{{name, service}, {"the engine alone", engine}};
    take_turns(paths);
    return {paths[0].samples, paths[1].samples};
}

void tell_beside_ping_pong(double service) {
    auto const engine = benchmarks::engine_round_trip_us(BENCHMARK_ENGINE_CONFIGURATION);
    if (engine) {
        benchmarks::tell({"RequestAlive beside the engine's ping-pong, median", service, *engine, "us"});
    } else {
        std::printf("The engine's own ping-pong was not measured: ddsperf (package cyclonedds-tools) told nothing.\n");
    }
}

// Alone is what the service took alone, at the pace that the engine has now.
void tell_beside_alone(std::string const& name, Figures const& now, Figures const& alone) {
    auto const pace = now.engine.median_us() / alone.engine.median_us();
    benchmarks::tell({name + ", median", now.service.median_us(), alone.service.median_us() * pace, "us",
                      benchmarks::at_most_times(k_flat)});
    benchmarks::tell({name + ", p99 beside median", now.service.p99_us(), now.service.median_us(), "us",
                      benchmarks::at_most_times(k_tail)});
}

/// The service among clients that keep a connection and do nothing, and after one of them was killed.
void tell_beside_others(Call const& service, Call const& engine, Figures const& alone) {
    std::vector<std::unique_ptr<Peer>> clients;
    for (std::size_t const count : {5, 20, 45}) {
        while (clients.size() < count) {
            clients.push_back(std::make_unique<Peer>("idle", "benchmark"));
        }
        auto const name = "RequestAlive beside " + std::to_string(count) + " idle clients";
        tell_beside_alone(name, measure(name, service, engine), alone);
    }
    clients.front()->kill();
    std::string const name = "RequestAlive after a client was killed";
    tell_beside_alone(name, measure(name, service, engine), alone);
}

int run_all() {
    base::Temporary_directory const files;
    bench::Private_bus const bus(files.path());
    Peer const socket_server("socket", files.file("ping"));
    Peer const bus_server("bus", bus.address());
    Peer const engine_server("engine", BENCHMARK_ENGINE_CONFIGURATION);
    Peer const server("alive", "benchmark");
    benchmarks::Socket_call const socket(files.file("ping"));
    benchmarks::Bus_call const bus_call(bus.address());
    benchmarks::Engine_call const engine_call(BENCHMARK_ENGINE_CONFIGURATION);
    tarq::com::runtime::Component_singleton const runtime(false, "");
    auto const proxy = benchmarks::found<StateManagementAliveInterfaceProxy>("benchmark");
    Call const service = [&] { proxy->RequestAlive().get(); };
    Call const engine = [&] { engine_call(); };

    std::vector<Path> paths{{"RequestAlive", service},
                            {"the engine alone", engine},
                            {"D-Bus", [&] { bus_call(); }},
                            {"Unix socket", [&] { socket(); }}};
    take_turns(paths);
    Figures const alone{paths[0].samples, paths[1].samples};
    auto const tell = [&](char const* what, Samples const& yardstick, benchmarks::Target target) {
        benchmarks::tell({what, alone.service.median_us(), yardstick.median_us(), "us", target});
    };
    tell("RequestAlive beside the engine alone, median", alone.engine, benchmarks::at_most_times(1.2));
    tell("RequestAlive beside D-Bus, median", paths[2].samples, benchmarks::at_most_times(0.7));
    tell("RequestAlive beside a Unix socket, median", paths[3].samples, {});
    tell_beside_ping_pong(alone.service.median_us());
    tell_beside_others(service, engine, alone);
    return EXIT_SUCCESS;
}

}  // namespace

int main() {
    return benchmarks::run_in_world("benchmark_communication", &run_all);
}
