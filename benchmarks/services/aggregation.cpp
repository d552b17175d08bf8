// What it costs to combine the bits of all applications anew when one of them changes: a request and its release, with
// 10, 100 and 1000 applications that hold bits; beside it, twice the bits of as many names are put together and nothing
// else. The log is not started, as its calls are measured by themselves.

#include "benchmarks/machine/figures.h"
#include "benchmarks/machine/times_reporter.h"
#include "statemanager/nm/nm_data_aggregator.h"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <string>

#include <benchmark/benchmark.h>

namespace {

using ximo::ap::statemanager::nm::Nm_data_aggregator;

Nm_data_aggregator with_applications(std::int64_t count) {
    Nm_data_aggregator aggregator({});
    aggregator.init(4);
    for (std::int64_t number = 0; number < count; ++number) {
        auto const name = "application " + std::to_string(number);
        aggregator.request_cab_bits(name, {static_cast<std::uint8_t>(number), 0x01});
        aggregator.set_ac_bit(name, static_cast<std::uint8_t>(number % 16 + 1));
    }
    return aggregator;
}

void Request_and_release_CAB_bits(benchmark::State& state) {
    auto aggregator = with_applications(state.range(0));
    for (auto _ : state) {
        aggregator.request_cab_bits("application 1", {0x00, 0x00, 0x80});
        aggregator.release_cab_bits("application 1", {0x00, 0x00, 0x80});
        benchmark::DoNotOptimize(aggregator.get_user_data().data());
    }
}

void Request_and_release_car_wake_up(benchmark::State& state) {
    auto aggregator = with_applications(state.range(0));
    for (auto _ : state) {
        aggregator.request_cwu("application 1");
        aggregator.release_cwu("application 1");
        benchmark::DoNotOptimize(aggregator.get_user_data().data());
    }
}

void All_bits_twice(benchmark::State& state) {
    std::map<std::string, std::array<std::uint8_t, 8>> bits_of;
    for (std::int64_t number = 0; number < state.range(0); ++number) {
        bits_of["application " + std::to_string(number)] = {static_cast<std::uint8_t>(number), 0x01};
    }
    for (auto _ : state) {
        for (int change = 0; change < 2; ++change) {
            std::array<std::uint8_t, 8> all{};
            for (auto const& [name, bits] : bits_of) {
                for (std::size_t place = 0; place < all.size(); ++place) {
                    all[place] = static_cast<std::uint8_t>(all[place] | bits[place]);
                }
            }
            benchmark::DoNotOptimize(all.data());
            benchmark::ClobberMemory();
        }
    }
}

BENCHMARK(All_bits_twice)->Arg(10)->Arg(100)->Arg(1000);
BENCHMARK(Request_and_release_CAB_bits)->Arg(10)->Arg(100)->Arg(1000);
BENCHMARK(Request_and_release_car_wake_up)->Arg(10)->Arg(100)->Arg(1000);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    benchmarks::Times_reporter times;
    benchmark::RunSpecifiedBenchmarks(&times);
    for (std::string const applications : {"10", "100", "1000"}) {
        auto const tell = [&](char const* what, char const* name) {
            benchmarks::tell({what + applications + " applications", times.time_of(name + ("/" + applications)),
                              times.time_of("All_bits_twice/" + applications), "ns"});
        };
        tell("CAB bits, ", "Request_and_release_CAB_bits");
        tell("car wake-up, ", "Request_and_release_car_wake_up");
    }
    return EXIT_SUCCESS;
}
