// Encoding and decoding of messages, each beside a plain copy of the same bytes into memory that is allocated anew.

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

BENCHMARK_CAPTURE(Copy, answer, answer());
BENCHMARK_CAPTURE(Encode, answer, answer());
BENCHMARK_CAPTURE(Decode, answer, answer());
BENCHMARK_CAPTURE(Copy, longest, longest());
BENCHMARK_CAPTURE(Encode, longest, longest());
BENCHMARK_CAPTURE(Decode, longest, longest());

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    benchmarks::Times_reporter times;
    benchmark::RunSpecifiedBenchmarks(&times);
    for (std::string const message : {"answer", "longest"}) {
        for (char const* const work : {"Encode", "Decode"}) {
            benchmarks::tell({std::string(work) + ", " + message, times.time_of(work + ("/" + message)),
                              times.time_of("Copy/" + message), "ns"});
        }
    }
    return EXIT_SUCCESS;
}
