// Encoding and decoding of messages beside copies of what comes out of them: of the same bytes into memory that is
// allocated anew, and of the same list of elements, each with memory of its own.

#include "benchmarks/machine/figures.h"
#include "benchmarks/machine/times_reporter.h"
#include "utilities/serialization.h"

#include <cstdlib>
#include <cstring>
#include <string>

#include <benchmark/benchmark.h>

namespace {

using utilities::Bytes;
using utilities::Type_length_value;
using utilities::Type_length_values;

/// An answer as clients give it.
Type_length_values answer() {
    return {Type_length_value(7U), Type_length_value("kPrepSD"), Type_length_value(0U)};
}

/// The longest message that the server takes, as one element.
Type_length_values longest() {
    return {Type_length_value(std::string(65'536 - utilities::k_header_size, 'x'))};
}

void count_bytes(benchmark::State& state, Bytes const& bytes) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
}

void Encode(benchmark::State& state, Type_length_values const& list) {
    for (auto _ : state) {
        auto bytes = utilities::serialize(list);
        benchmark::DoNotOptimize(bytes.data());
    }
    count_bytes(state, utilities::serialize(list));
}

void Decode(benchmark::State& state, Type_length_values const& list) {
    auto const bytes = utilities::serialize(list);
    for (auto _ : state) {
        auto iterator = bytes.begin() + utilities::k_header_size;
        auto decoded = utilities::deserialize_vector(bytes.size() - utilities::k_header_size, iterator, bytes.end());
        benchmark::DoNotOptimize(decoded.data());
    }
    count_bytes(state, bytes);
}

void Copy(benchmark::State& state, Type_length_values const& list) {
    auto const bytes = utilities::serialize(list);
    for (auto _ : state) {
        Bytes copy;
        copy.reserve(bytes.size());
        std::memcpy(copy.data(), bytes.data(), bytes.size());
        benchmark::DoNotOptimize(copy.data());
        benchmark::ClobberMemory();
    }
    count_bytes(state, bytes);
}

void Copy_list(benchmark::State& state, Type_length_values const& list) {
    for (auto _ : state) {
        auto copy = list;
        benchmark::DoNotOptimize(copy.data());
    }
}

BENCHMARK_CAPTURE(Copy, answer, answer());
BENCHMARK_CAPTURE(Copy_list, answer, answer());
BENCHMARK_CAPTURE(Encode, answer, answer());
BENCHMARK_CAPTURE(Decode, answer, answer());
BENCHMARK_CAPTURE(Copy, longest, longest());
BENCHMARK_CAPTURE(Copy_list, longest, longest());
BENCHMARK_CAPTURE(Encode, longest, longest());
BENCHMARK_CAPTURE(Decode, longest, longest());

void tell(benchmarks::Times_reporter const& times, std::string const& work, std::string const& message,
          std::string const& yardstick, double most) {
    benchmarks::tell({work + ", " + message, times.time_of(work + "/" + message),
                      times.time_of(yardstick + "/" + message), "ns", benchmarks::at_most_times(most)});
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    benchmarks::Times_reporter times;
    benchmark::RunSpecifiedBenchmarks(&times);
    tell(times, "Encode", "answer", "Copy", 6.0);
    tell(times, "Encode", "longest", "Copy", 1.3);
    tell(times, "Decode", "answer", "Copy_list", 2.0);
    tell(times, "Decode", "longest", "Copy_list", 1.3);
    return EXIT_SUCCESS;
}
