// From the start of the process (just before fork) to the arrival of "startingup" in the VM-control file: the daemon,
// and beside it in the same run a program that only loads the same libraries and writes the word.

#include "bench/json_lines/clock.h"
#include "benchmarks/machine/figures.h"
#include "benchmarks/machine/machine.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

namespace {

using benchmarks::Machine;
using benchmarks::Samples;

constexpr int k_starts = 20;  // in one repetition
constexpr int k_repetitions = 5;
constexpr int k_short_repetitions = 2;
constexpr double k_target_ms = 2.5;

void measure(benchmark::State& state, Machine& machine, std::vector<std::string> const& words, Samples& samples) {
    while (state.KeepRunning()) {
        std::size_t const from = machine.hypervisor().position();
        std::int64_t const start = bench::monotonic_ns();
        auto const program = words.empty() ? machine.start_daemon() : machine.start(words);
        std::int64_t const duration = machine.await_word("startingup", from) - start;
        samples.add(duration);
        state.SetIterationTime(static_cast<double>(duration) / 1e9);
        if (words.empty()) {
            machine.await_word("running", from);
        }
        program->signal(SIGTERM);
        program->wait(std::chrono::seconds(5));
    }
}

void register_benchmark(char const* name, Machine& machine, std::vector<std::string> const& words, Samples& samples) {
    benchmark::RegisterBenchmark(
        name, [&machine, words, &samples](benchmark::State& state) { measure(state, machine, words, samples); })
        ->Iterations(k_starts)
        ->Repetitions(benchmarks::whole_or_short(k_repetitions, k_short_repetitions))
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond)
        ->ReportAggregatesOnly();
}

int run() {
    Machine machine;
    Samples loader;
    Samples daemon;
    register_benchmark("loader", machine, {BENCHMARK_LOADER, benchmarks::k_status_file}, loader);
    register_benchmark("daemon", machine, {}, daemon);
    benchmark::RunSpecifiedBenchmarks();
    benchmarks::print("start to word, loader", loader);
    benchmarks::print("start to word, daemon", daemon);
    if (loader.count() == 0 || daemon.count() == 0) {
        return EXIT_SUCCESS;
    }
    benchmarks::tell({"start to \"startingup\", median", daemon.median_us() / 1000.0, loader.median_us() / 1000.0, "ms",
                      benchmarks::at_most_more(k_target_ms)});
    benchmarks::tell({"start to \"startingup\", p99", daemon.p99_us() / 1000.0, loader.p99_us() / 1000.0, "ms",
                      benchmarks::at_most_more(2.0 * k_target_ms)});
    return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    return benchmarks::run_in_world("benchmark_start_up", &run);
}
