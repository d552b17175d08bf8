// What both sides of a call hold after very many of them:
//
//     benchmark_call_memory [CALLS]
//
// Calls the ECU-alive service of another process, and prints what both processes have resident and allocated at the
// start, at the end, and at most in between.

#include "benchmarks/communication/found.h"
#include "benchmarks/communication/peer.h"
#include "benchmarks/machine/figures.h"
#include "benchmarks/machine/machine.h"
#include "benchmarks/machine/process_memory.h"
#include "tarq/com/runtime/component_singleton.h"
#include "ximo/ap/statemanager/state_management_alive_interface_proxy.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

// Whatever is kept for those who call for the first time, and for the last requests, is there by then.
constexpr long k_warm_up = 20'000;
constexpr int k_calls = 100'000;
constexpr int k_short_calls = 20'000;
constexpr long k_looks = 200;

int run(long calls) {
    benchmarks::Peer server("alive", "benchmark");
    tarq::com::runtime::Component_singleton const runtime(false, "");
    auto const service =
        benchmarks::found<ximo::ap::statemanager::proxy::StateManagementAliveInterfaceProxy>("benchmark");
    auto const call = [&](long count) {
        for (; count > 0; --count) {
            service->RequestAlive().get();
        }
    };
    benchmarks::Memory_course of_client;
    benchmarks::Memory_course of_server;
    auto const look = [&] {
        of_client.add(benchmarks::own_memory());
        of_server.add(server.memory());
    };
    call(k_warm_up);
    look();
    for (long part = 0; part < k_looks; ++part) {
        call(calls / k_looks);
        look();
    }
    std::printf("%ld calls\n", calls);
    of_client.print("client");
    of_server.print("server");
    of_client.tell("many calls", "client");
    of_server.tell("many calls", "server");
    return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
    bool const is_told = argc > 1 && argv[1][0] != '-';  // other words are for programs that repeat
    long const calls = is_told ? std::stol(argv[1]) : benchmarks::whole_or_short(k_calls, k_short_calls);
    return benchmarks::run_in_world("benchmark_call_memory", [calls] { return run(calls); });
}
