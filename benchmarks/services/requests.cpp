#include "bench/process/child_process.h"
#include "benchmarks/machine/figures.h"
#include "measurements.h"

#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <unistd.h>

namespace benchmarks {

namespace {

constexpr int k_rounds = 3;
constexpr int k_short_rounds = 1;
constexpr int k_milliseconds = 700;

/// The next line that a caller writes.
std::string line_of(bench::Child_process& caller) {
    std::string line;
    char letter = 0;
    while (read(caller.output(), &letter, 1) == 1 && letter != '\n') {
        line += letter;
    }
    return line;
}

/// Applications that call at the same time, each its own instance: of the daemon, or of the one that does nothing.
struct Callers {
    std::string name;
    std::string kind;
    int first;
    int count;
    int calls{0};
};

std::unique_ptr<bench::Child_process> start(int instance, std::string const& kind) {
    return std::make_unique<bench::Child_process>(
        std::vector<std::string>{BENCHMARK_CALLER, std::to_string(instance), kind, std::to_string(k_milliseconds)},
        std::vector<std::string>{});
}

int answered_calls(Callers const& wanted) {
    std::vector<std::unique_ptr<bench::Child_process>> callers;
    for (int number = 0; number < wanted.count; ++number) {
        callers.push_back(start(wanted.first + number, wanted.kind));
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
    return calls;
}

// Of all applications together.
double us_a_call(Callers const& callers) {
    return benchmarks::whole_or_short(k_rounds, k_short_rounds) * k_milliseconds * 1000.0 / callers.calls;
}

}  // namespace

void measure_requests(bench::vehicle::Vehicle& vehicle) {
    vehicle.start_daemon();
    vehicle.await(bench::vehicle::Kind::state_word, "running");
    auto const empty_service = start(k_empty_instance, "serve");
    line_of(*empty_service);
    Callers empty{"empty call", "repeated", k_empty_instance, 1};
    Callers repeated{"repeated COM-alive call", "repeated", 1, 1};
    Callers changing{"changing COM-alive call", "changing", 1, 1};
    Callers all_repeated{"repeated COM-alive call, 16 applications", "repeated", 1, k_applications};
    Callers all_changing{"changing COM-alive call, 16 applications", "changing", 1, k_applications};
    for (int round = 0; round < whole_or_short(k_rounds, k_short_rounds); ++round) {
        for (auto* callers : {&empty, &repeated, &changing, &all_repeated, &all_changing}) {
            callers->calls += answered_calls(*callers);
        }
    }
    auto const tell_beside = [](Callers const& callers, Callers const& yardstick, double most) {
        tell({callers.name, us_a_call(callers), us_a_call(yardstick), "us", at_most_times(most)});
    };
    tell_beside(repeated, empty, 1.3);
    tell_beside(changing, empty, 2.2);
    tell_beside(all_repeated, repeated, 1.0);
    tell_beside(all_changing, changing, 1.0);
    stop_daemon(vehicle);
}

}  // namespace benchmarks
