#include "bench/process/child_process.h"
#include "benchmarks/machine/figures.h"
#include "measurements.h"

#include <chrono>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <unistd.h>

namespace benchmarks {

namespace {

constexpr int k_milliseconds = 2000;

/// The next line that a caller writes.
std::string line_of(bench::Child_process& caller) {
    std::string line;
    char letter = 0;
    while (read(caller.output(), &letter, 1) == 1 && letter != '\n') {
        line += letter;
    }
    return line;
}

/// Calls a second of that many applications at once.
double rate(int applications, char const* kind) {
    std::vector<std::unique_ptr<bench::Child_process>> callers;
    for (int number = 1; number <= applications; ++number) {
        callers.push_back(std::make_unique<bench::Child_process>(
            std::vector<std::string>{BENCHMARK_CALLER, std::to_string(number), kind, std::to_string(k_milliseconds)},
            std::vector<std::string>{}));
    }
    for (auto const& caller : callers) {
        if (line_of(*caller) != "ready") {
            throw std::runtime_error("a caller is not ready");
        }
    }
    for (auto const& caller : callers) {
        if (write(caller->input(), "\n", 1) != 1) {
            throw std::runtime_error("a caller has gone");
        }
    }
    int calls = 0;
    for (auto const& caller : callers) {
        calls += std::stoi(line_of(*caller));
        caller->wait(std::chrono::seconds(5));
    }
    return calls * 1000.0 / k_milliseconds;
}

}  // namespace

void measure_requests(bench::vehicle::Vehicle& vehicle) {
    vehicle.start_daemon();
    vehicle.await(bench::vehicle::Kind::state_word, "running");
    for (auto const* kind : {"repeated", "changing"}) {
        for (int const applications : {1, 4, k_applications}) {
            double const calls = rate(applications, kind);
            std::printf("%s COM-alive calls of %d applications: %.0f a second\n", kind, applications, calls);
            tell({std::string(kind) + " COM-alive call, " + std::to_string(applications) + " applications", 1e6 / calls,
                  0.0, "us"});
        }
    }
    stop_daemon(vehicle);
}

}  // namespace benchmarks
