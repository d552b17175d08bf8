// What the machine itself adds to a suspend. Its three groups of clients are asked one after the other, and each
// answers at once; measured is the time from the answer of a group to the request to the next one, and from that of the
// last group to the word that all is prepared. A group's end is seen in the next cycle, so that the period decides;
// what a shorter one costs while nothing happens is measured beside it. The next suspend begins when all have answered
// that they are back.

#include "bench/json_lines/clock.h"
#include "benchmarks/machine/figures.h"
#include "benchmarks/machine/machine.h"
#include "process_usage.h"
#include "prompt_clients.h"

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <string>
#include <thread>

#include <linux/input-event-codes.h>

namespace {

using benchmarks::Machine;
using benchmarks::Prompt_clients;
using benchmarks::Samples;

constexpr int k_suspends = 5;
constexpr int k_short_suspends = 3;
constexpr int k_idle_seconds = 5;
constexpr int k_short_idle_seconds = 2;
constexpr double k_target_ratio = 1.1;
constexpr std::array<int, 2> k_periods_ms{100, 10};

/// From the answer of each group to what comes next, and all of these together.
struct Shares {
    std::array<Samples, 3> of_groups;
    Samples of_suspends;

    void add(Prompt_clients const& clients, std::int64_t prepared_at) {
        std::int64_t sum = 0;
        for (std::size_t group = 0; group < Prompt_clients::k_count; ++group) {
            auto const next = group + 1 < Prompt_clients::k_count ? clients.asked_at(group + 1) : prepared_at;
            of_groups[group].add(next - clients.answered_at(group));
            sum += next - clients.answered_at(group);
        }
        of_suspends.add(sum);
    }
};

/// How a key comes: pressed and let go, which is four records, or as one record, which ends no cycle but the one that
/// it is read in.
enum class Key { whole, one_record };

std::int64_t go(Machine& machine, Key key, std::pair<char const*, int> const& names, char const* word) {
    auto& hypervisor = machine.hypervisor();
    auto const from = hypervisor.position();
    if (key == Key::whole) {
        hypervisor.command({{"do", "press"}, {"key", names.first}});
    } else {
        hypervisor.command({{"do", "record"}, {"type", EV_KEY}, {"code", names.second}, {"value", 1}});
    }
    return machine.await_word(word, from);
}

Shares suspend_again_and_again(Machine& machine, Prompt_clients const& clients, Key key) {
    Shares shares;
    for (int suspend = 0; suspend < benchmarks::whole_or_short(k_suspends, k_short_suspends); ++suspend) {
        auto const answers = clients.answers();
        auto const prepared_at = go(machine, key, {"p", KEY_P}, "prepared4sd");
        shares.add(clients, prepared_at);
        go(machine, key, {"r", KEY_R}, "running");
        clients.await_answers(answers + 2);
    }
    return shares;
}

double idle_percent(pid_t daemon) {
    auto const seconds = benchmarks::whole_or_short(k_idle_seconds, k_short_idle_seconds);
    auto const before = benchmarks::usage_of(daemon);
    std::this_thread::sleep_for(std::chrono::seconds(seconds));
    return static_cast<double>(benchmarks::running_ns(benchmarks::usage_of(daemon) - before)) / 1e7 / seconds;
}

void tell(Shares const& shares, std::string const& at, int period_ms) {
    std::size_t group = 0;
    for (auto const* what : {"diag::dcm to applications", "applications to diag::dem", "diag::dem to prepared4sd"}) {
        benchmarks::print(what, shares.of_groups.at(group++));
    }
    benchmarks::tell({"own share of a suspend" + at + ", beside three of it", shares.of_suspends.median_us() / 1000.0,
                      3.0 * period_ms, "ms", benchmarks::at_most_times(k_target_ratio)});
}

/// Returns what the daemon takes of a core while nothing happens.
double measure(int period_ms) {
    auto const at = " at a period of " + std::to_string(period_ms) + " ms";
    Machine machine(static_cast<unsigned>(period_ms));
    auto const from = machine.hypervisor().position();
    auto const daemon = machine.start_daemon();
    machine.await_word("running", from);
    Prompt_clients const clients;
    tell(suspend_again_and_again(machine, clients, Key::one_record), at, period_ms);
    tell(suspend_again_and_again(machine, clients, Key::whole), at + ", key let go at once", period_ms);
    auto const idle = idle_percent(daemon->pid());
    daemon->signal(SIGTERM);
    daemon->wait(std::chrono::seconds(5));
    return idle;
}

int run() {
    double usual_percent = 0.0;
    for (int const period_ms : k_periods_ms) {
        auto const percent = measure(period_ms);
        benchmarks::tell({"idle among 3 clients at a period of " + std::to_string(period_ms) + " ms", percent,
                          usual_percent, "% of a core"});
        usual_percent = percent;
    }
    return EXIT_SUCCESS;
}

}  // namespace

int main() {
    return benchmarks::run_in_world("benchmark_suspend", &run);
}
