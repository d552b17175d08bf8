// What a log call with three arguments costs its caller: ours, a bare call of libdlt, and an asynchronous call of
// spdlog, in the same run with a DLT daemon that reads. Calls come in bursts that no queue overflows at; between two
// bursts everything is written out, which is not timed. `median_ns` and `p99_ns` are those of the bursts, per call.

#include "ara/log/log_engine.h"
#include "ara/log/logging.h"
#include "bench/vehicle/dlt_reader.h"
#include "bench/vehicle/world.h"
#include "benchmarks/machine/figures.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exception>
#include <map>
#include <numeric>
#include <string>
#include <thread>
#include <vector>

#include <benchmark/benchmark.h>
#include <dlt/dlt.h>
#include <spdlog/async.h>
#include <spdlog/sinks/null_sink.h>

DLT_DECLARE_CONTEXT(bare_context)

namespace {

constexpr int k_burst = 100;

std::map<std::string, std::vector<double>> bursts_ns;  ///< of each kind of call, sorted

template <class Call, class Write_out>
void time_bursts(char const* kind, benchmark::State& state, Call const& call, Write_out const& write_out) {
    int number = 0;
    std::vector<double> calls_ns;
    for (auto _ : state) {
        auto const begin = std::chrono::steady_clock::now();
        for (int index = 0; index < k_burst; ++index) {
            call(++number);
        }
        std::chrono::duration<double> const taken = std::chrono::steady_clock::now() - begin;
        state.SetIterationTime(taken.count() / k_burst);
        calls_ns.push_back(taken.count() / k_burst * 1e9);
        write_out();
    }
    std::sort(calls_ns.begin(), calls_ns.end());
    state.counters["median_ns"] = calls_ns[calls_ns.size() / 2];
    state.counters["p99_ns"] = calls_ns[calls_ns.size() * 99 / 100];
    bursts_ns[kind] = calls_ns;
}

void Three_arguments_ara_log(benchmark::State& state) {
    time_bursts(
        "ours", state,
        [](int number) { ara::log::LogInfo() << "AP_StateManger transition from" << number << "Running"; },
        [] {
            while (!ara::log::Log_engine::instance().drain()) {  // the log daemon is slower than the bursts
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
        });
}

void Three_arguments_bare_libdlt(benchmark::State& state) {
    time_bursts(
        "libdlt", state,
        [](int number) {
            DLT_LOG(bare_context, DLT_LOG_INFO, DLT_STRING("AP_StateManger transition from"), DLT_INT(number),
                    DLT_STRING("Running"));
        },
        [] { std::this_thread::sleep_for(std::chrono::milliseconds(1)); });
}

void Three_arguments_spdlog_asynchronous(benchmark::State& state) {
    static auto const logger = spdlog::create_async<spdlog::sinks::null_sink_mt>("bench");
    time_bursts(
        "spdlog", state,
        [](int number) { logger->info("{} {} {}", "AP_StateManger transition from", number, "Running"); },
        [] { std::this_thread::sleep_for(std::chrono::milliseconds(1)); });
}

void Level_not_logged_ara_log(benchmark::State& state) {
    static auto& logger = ara::log::CreateLogger("QUIE", "Quiet", ara::log::LogLevel::kOff);
    logger.context().threshold = logger.context().own_threshold;
    for (auto _ : state) {
        logger.LogVerbose() << "AP_StateManger transition from" << 1 << "Running";
    }
}

BENCHMARK(Three_arguments_ara_log)->UseManualTime()->Iterations(5000);
BENCHMARK(Three_arguments_bare_libdlt)->UseManualTime()->Iterations(2000);
BENCHMARK(Three_arguments_spdlog_asynchronous)->UseManualTime()->Iterations(2000);
BENCHMARK(Level_not_logged_ara_log);

double quantile_ns(char const* kind, double share) {
    auto const& calls = bursts_ns[kind];
    return calls.empty() ? 0.0 : calls[static_cast<std::size_t>(share * static_cast<double>(calls.size() - 1))];
}

double mean_ns(char const* kind) {
    auto const& calls = bursts_ns[kind];
    return calls.empty() ? 0.0 : std::accumulate(calls.begin(), calls.end(), 0.0) / static_cast<double>(calls.size());
}

void tell_rows() {
    for (char const* const other : {"libdlt", "spdlog"}) {
        std::string const beside = std::string("log call with three arguments beside ") + other;
        benchmarks::tell({beside + ", median", quantile_ns("ours", 0.5), quantile_ns(other, 0.5), "ns",
                          benchmarks::at_most_times(1.0)});
        benchmarks::tell({beside + ", mean", mean_ns("ours"), mean_ns(other), "ns", benchmarks::at_most_times(1.0)});
        benchmarks::tell({beside + ", p99", quantile_ns("ours", 0.99), quantile_ns(other, 0.99), "ns",
                          benchmarks::at_most_times(1.0)});
    }
}

int run(int argc, char** argv) {
    bench::vehicle::Dlt_reader const reader;
    ara::log::InitLogging("BNCH", "Benchmark", ara::log::LogLevel::kInfo, ara::log::LogMode::kRemote, "");
    DLT_REGISTER_CONTEXT(bare_context, "BARE", "libdlt by itself");
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    tell_rows();
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return bench::vehicle::run_inside(PROJECT, [&] { return run(argc, argv); });
    } catch (std::exception const& error) {
        std::fprintf(stderr, "log_benchmark: %s\n", error.what());
        return 1;
    }
}
