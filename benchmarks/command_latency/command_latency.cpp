// From the hypervisor's key press to the state word in the VM-control file: the daemon, and beside it in the same run
// on the same files a bare relay. Both times are taken by the hypervisor, at the press and at the arrival of the word.

#include "benchmarks/machine/figures.h"
#include "benchmarks/machine/machine.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <memory>
#include <thread>

#include <benchmark/benchmark.h>

namespace {

using benchmarks::Machine;
using benchmarks::Samples;

constexpr int k_presses = 100;  // of each key, in one repetition, or fewer in the short form
constexpr int k_short_presses = 40;
constexpr int k_repetitions = 4;
constexpr int k_short_repetitions = 3;
constexpr double k_target_ratio = 1.2;
constexpr std::size_t k_records_of_a_press = 4;
// Between two presses, so that each finds both sides asleep and the last one's work done.
constexpr std::chrono::milliseconds k_rest{10};

// Presses the key, waits for the word and until all of the press has been read; returns the time between.
std::int64_t press_until(Machine& machine, char const* key, char const* word) {
    std::this_thread::sleep_for(k_rest);
    auto& hypervisor = machine.hypervisor();
    std::size_t const from = hypervisor.position();
    std::int64_t const pressed = hypervisor.command({{"do", "press"}, {"key", key}})["t"];
    std::int64_t const written = machine.await_word(word, from);
    std::size_t reads = 0;
    hypervisor.log().await(
        [&](nlohmann::json const& line) {
            reads += line.contains("event") && line["event"] == "read" ? 1 : 0;
            return reads == k_records_of_a_press;
        },
        bench::Player::k_patience, from);
    return written - pressed;
}

// "p" takes the running machine to preparing and on to prepared, "r" back over resuming to running.
void go_round(benchmark::State& state, Machine& machine, Samples& samples, bool daemon) {
    while (state.KeepRunning()) {
        std::size_t const from = machine.hypervisor().position();
        std::int64_t const there = press_until(machine, "p", "preparing");
        if (daemon) {
            machine.await_word("prepared4sd", from);
        }
        std::int64_t const back = press_until(machine, "r", "resuming");
        if (daemon) {
            machine.await_word("running", from);
        }
        samples.add(there);
        samples.add(back);
        state.SetIterationTime(static_cast<double>(there + back) / 2e9);
    }
}

void measure_relay(benchmark::State& state, Machine& machine, Samples& samples) {
    std::size_t const from = machine.hypervisor().position();
    auto const relay = machine.start(
        {BENCHMARK_RELAY, benchmarks::k_input_device, benchmarks::k_status_file, "preparing", "resuming"});
    machine.await_word("relay", from);
    go_round(state, machine, samples, false);
    relay->signal(SIGKILL);
    relay->wait(std::chrono::seconds(5));
}

void measure_daemon(benchmark::State& state, Machine& machine, Samples& samples) {
    std::size_t const from = machine.hypervisor().position();
    auto const daemon = machine.start_daemon();
    machine.await_word("running", from);
    go_round(state, machine, samples, true);
    daemon->signal(SIGTERM);
    daemon->wait(std::chrono::seconds(5));
}

void register_benchmark(char const* name, std::function<void(benchmark::State&)> const& body) {
    benchmark::RegisterBenchmark(name, body)
        ->Iterations(benchmarks::whole_or_short(k_presses, k_short_presses))
        ->Repetitions(benchmarks::whole_or_short(k_repetitions, k_short_repetitions))
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond)
        ->ReportAggregatesOnly();
}

int run() {
    Machine machine;
    Samples relay;
    Samples daemon;
    register_benchmark("relay", [&](benchmark::State& state) { measure_relay(state, machine, relay); });
    register_benchmark("daemon", [&](benchmark::State& state) { measure_daemon(state, machine, daemon); });
    benchmark::RunSpecifiedBenchmarks();
    benchmarks::print("key to word, relay", relay);
    benchmarks::print("key to word, daemon", daemon);
    if (relay.count() == 0 || daemon.count() == 0) {
        return EXIT_SUCCESS;
    }
    benchmarks::tell({"key to word, median", daemon.median_us(), relay.median_us(), "us",
                      benchmarks::at_most_times(k_target_ratio)});
    benchmarks::tell(
        {"key to word, p99", daemon.p99_us(), relay.p99_us(), "us", benchmarks::at_most_times(k_target_ratio)});
    return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    return benchmarks::run_in_world("benchmark_command_latency", &run);
}
