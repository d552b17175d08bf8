// What it costs to combine the bits of all applications anew when one of them changes: a request and its release, with
// 10, 100 and 1000 applications that hold bits. The log is not started, as its calls are measured by themselves.

#include "statemanager/nm/nm_data_aggregator.h"

#include <cstdint>
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

BENCHMARK(Request_and_release_CAB_bits)->Arg(10)->Arg(100)->Arg(1000);
BENCHMARK(Request_and_release_car_wake_up)->Arg(10)->Arg(100)->Arg(1000);

}  // namespace

BENCHMARK_MAIN();
