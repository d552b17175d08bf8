// What the daemon costs while nothing happens, at a period of 100 ms: processor time of all its threads and resident
// memory. Beside it, at the same time on the same machine, a program that does nothing but wait and report alive.

#include "benchmarks/machine/figures.h"
#include "benchmarks/machine/machine.h"
#include "process_usage.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <memory>
#include <thread>

#include <benchmark/benchmark.h>

namespace {

using benchmarks::Machine;

constexpr std::chrono::seconds k_settling{2};
constexpr int k_seconds = 20;
constexpr int k_short_seconds = 10;
constexpr double k_target_percent = 0.2;
constexpr double k_target_mib = 12.0;

struct Idle {
    double percent{0.0};  // of one core
    double resident_mib{0.0};
};

void measure(benchmark::State& state, bench::Child_process const& process, Idle& result) {
    while (state.KeepRunning()) {
        std::this_thread::sleep_for(k_settling);
        auto const start = std::chrono::steady_clock::now();
        std::int64_t const before = benchmarks::processor_time_ns(process.pid());
        std::this_thread::sleep_for(std::chrono::seconds(benchmarks::whole_or_short(k_seconds, k_short_seconds)));
        std::int64_t const used = benchmarks::processor_time_ns(process.pid()) - before;
        std::chrono::duration<double, std::nano> const passed = std::chrono::steady_clock::now() - start;
        auto const memory = benchmarks::memory_of(process.pid());
        result.percent = 100.0 * static_cast<double>(used) / passed.count();
        result.resident_mib = static_cast<double>(memory.resident_kib) / 1024.0;
        state.SetIterationTime(static_cast<double>(used) / 1e9);
        state.counters["percent_of_core"] = result.percent;
        state.counters["resident_MiB"] = result.resident_mib;
        state.counters["anonymous_MiB"] = static_cast<double>(memory.anonymous_kib) / 1024.0;
    }
}

void register_benchmark(char const* name, bench::Child_process const& process, Idle& result) {
    benchmark::RegisterBenchmark(name,
                                 [&process, &result](benchmark::State& state) { measure(state, process, result); })
        ->Iterations(1)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
}

std::unique_ptr<bench::Child_process> started(Machine& machine, bool daemon) {
    std::size_t const from = machine.hypervisor().position();
    auto process = daemon ? machine.start_daemon()
                          : machine.start({BENCHMARK_HEARTBEAT, benchmarks::k_input_device, benchmarks::k_status_file});
    machine.await_word("running", from);
    return process;
}

int run() {
    Machine machine;
    Idle heartbeat;
    Idle idle_daemon;
    auto const yardstick = started(machine, false);
    auto const daemon = started(machine, true);
    register_benchmark("heartbeat", *yardstick, heartbeat);
    register_benchmark("daemon", *daemon, idle_daemon);
    benchmark::RunSpecifiedBenchmarks();
    yardstick->signal(SIGKILL);
    daemon->signal(SIGTERM);
    benchmarks::tell({"idle, processor", idle_daemon.percent, heartbeat.percent, "% of a core",
                      benchmarks::at_most(k_target_percent)});
    benchmarks::tell({"idle, resident memory", idle_daemon.resident_mib, heartbeat.resident_mib, "MiB",
                      benchmarks::at_most(k_target_mib)});
    return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    return benchmarks::run_in_world("benchmark_idle", &run);
}
