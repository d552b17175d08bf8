// What both sides of a call hold after very many of them:
//
//     benchmark_call_memory [CALLS]
//
// Calls the ECU-alive service of another process, and prints what both processes have resident and allocated at the
// start, at the end, and at most in between.

#include "benchmarks/communication/found.h"
#include "benchmarks/communication/peer.h"
#include "benchmarks/communication/process_memory.h"
#include "benchmarks/machine/figures.h"
#include "benchmarks/machine/machine.h"
#include "tarq/com/runtime/component_singleton.h"
#include "ximo/ap/statemanager/state_management_alive_interface_proxy.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

using benchmarks::Process_memory;

// Whatever is kept for those who call for the first time, and for the last requests, is there by then.
constexpr long k_warm_up = 20'000;
constexpr int k_calls = 100'000;
constexpr int k_short_calls = 20'000;
constexpr long k_looks = 200;
constexpr double k_most_growth = 64.0;  // KiB

/// One process's memory over time.
class Course {
 public:
    void add(Process_memory const& now) {
        first_ = count_++ == 0 ? now : first_;
        last_ = now;
        most_ = {std::max(most_.resident, now.resident), std::max(most_.allocated, now.allocated)};
    }

    void print(char const* process) const {
        std::printf("%-7s resident %6ld KiB at the start, %6ld at the end, %6ld at most\n", process, first_.resident,
                    last_.resident, most_.resident);
        std::printf("%-7s allocated %5ld KiB at the start, %6ld at the end, %6ld at most\n", process, first_.allocated,
                    last_.allocated, most_.allocated);
    }

    // A process that takes and gives back pages has the same at the end as at the start.
    void tell(std::string const& process) const {
        benchmarks::tell({"many calls, " + process + " resident at the end", static_cast<double>(last_.resident),
                          static_cast<double>(first_.resident), "KiB", benchmarks::at_most_more(k_most_growth)});
        benchmarks::tell({"many calls, " + process + " allocated at the end", static_cast<double>(last_.allocated),
                          static_cast<double>(first_.allocated), "KiB", benchmarks::at_most_more(k_most_growth)});
    }

 private:
    int count_{0};
    Process_memory first_{};
    Process_memory last_{};
    Process_memory most_{};
};

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
    Course of_client;
    Course of_server;
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
    of_client.tell("client");
    of_server.tell("server");
    return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
    bool const is_told = argc > 1 && argv[1][0] != '-';  // other words are for programs that repeat
    long const calls = is_told ? std::stol(argv[1]) : benchmarks::whole_or_short(k_calls, k_short_calls);
    return benchmarks::run_in_world("benchmark_call_memory", [calls] { return run(calls); });
}
