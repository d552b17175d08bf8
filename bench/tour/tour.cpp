#include "bench/tour/tour.h"

#include "bench/json_lines/clock.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>
#include <utility>

namespace bench::tour {

namespace {

constexpr std::chrono::milliseconds k_pause{700};  // so that a person can follow

std::string describe(Expectation const& expectation) {
    return std::string(vehicle::name(expectation.kind)) + " \"" + expectation.text + "\"";
}

/// A kind of event, and for clients which of them.
using Thread = std::pair<vehicle::Kind, std::string>;

Thread thread_of(Expectation const& expectation) {
    bool const is_of_client = expectation.kind == vehicle::Kind::client;
    return {expectation.kind, is_of_client ? expectation.text.substr(0, expectation.text.find(' ')) : ""};
}

double seconds_since(std::int64_t start, std::int64_t time) {
    return static_cast<double>(time - start) / 1e9;
}

void print_step(std::size_t number, Step const& step, double at, bool all_seen) {
    std::printf("%8.3f s  %2zu  %-55s %s\n", at, number, step.name.c_str(), all_seen ? "seen" : "NOT SEEN");
    std::fflush(stdout);
}

}  // namespace

// What is expected of one kind, or of one client, happens in the order of the steps: each is followed by a position of
// its own.
std::vector<Finding> walk(vehicle::Machine& machine, std::vector<Step> const& steps,
                          std::chrono::milliseconds patience) {
    std::vector<Finding> findings;
    std::map<Thread, std::size_t> next;
    auto const start = monotonic_ns();
    std::size_t number = 0;
    for (auto const& step : steps) {
        next[{vehicle::Kind::watchdog, ""}] =
            machine.events().size();  // beats come all the time; only fresh ones count
        step.action(machine);
        std::int64_t latest = 0;
        bool all_seen = true;
        for (auto const& expectation : step.expectations) {
            auto& from = next[thread_of(expectation)];
            auto const position = machine.await(expectation.kind, expectation.text, from, patience);
            auto const time = position ? machine.events()[*position].time : 0;
            from = position ? *position + 1 : from;
            findings.push_back({step.name, describe(expectation), position.has_value(), time});
            all_seen = all_seen && position;
            latest = std::max(latest, time);
        }
        print_step(++number, step, seconds_since(start, latest == 0 ? monotonic_ns() : latest), all_seen);
        machine.watch(k_pause);
    }
    return findings;
}

bool print_summary(std::vector<Finding> const& findings) {
    std::printf("\n%-55s %-70s %s\n", "step", "expected", "seen");
    std::string step;
    std::size_t seen = 0;
    for (auto const& finding : findings) {
        std::printf("%-55s %-70s %s\n", finding.step == step ? "" : finding.step.c_str(), finding.expected.c_str(),
                    finding.seen ? "yes" : "NO");
        step = finding.step;
        seen += finding.seen ? 1U : 0U;
    }
    std::printf("\n%zu of %zu expectations seen\n", seen, findings.size());
    return seen == findings.size();
}

}  // namespace bench::tour
