// The daemon on a machine that has no time for it: from a key to its word, beats, and calls of a service, while
// stress-ng takes all processors, and while it reads and writes files and the pages of the daemon's own files are taken
// away. In turn with the daemon as its unit schedules it: the same with CPUSchedulingPolicy=rr, given by chrt just as
// the service manager does it, before the program begins. Its neighbours, who take the times, are never late: what is
// told is the daemon's. Usage: benchmark_load [ROUNDS]

#include "bench/json_lines/clock.h"
#include "benchmarks/machine/figures.h"
#include "benchmarks/machine/machine.h"
#include "evicted_files.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

#include <sched.h>
#include <unistd.h>

namespace {

using bench::Child_process;
using benchmarks::Machine;
using benchmarks::Samples;
using Words = std::vector<std::string>;

constexpr unsigned k_period_ms = 10;
constexpr int k_rounds = 2;
constexpr int k_short_rounds = 1;
constexpr int k_suspends = 25;
constexpr int k_milliseconds_of_calls = 1'500;
constexpr int k_priority_of_neighbours = 50;
constexpr double k_target_ratio = 0.5;  // what rr has to make of a figure to be worth its risks
constexpr std::chrono::seconds k_patience{20};

/// How a daemon is scheduled, by the program that becomes it.
struct Policy {
    char const* name;
    Words starter;
};

std::array<Policy, 2> const k_policies{{{"as shipped", {}}, {"rr", {"chrt", "--rr", "1"}}}};

/// What takes the machine's time.
struct Load {
    char const* name;
    Words program;
    bool evicts;
};

std::vector<Load> loads() {
    return {{"processors busy", {"stress-ng", "--quiet", "--temp-path", "/tmp", "--cpu", "0"}, false},
            {"page cache thrashed",
             {"stress-ng", "--quiet", "--temp-path", PROGRAMS, "--hdd", "1", "--hdd-bytes", "128m", "--readahead", "1",
              "--readahead-bytes", "128m"},
             true}};
}

/// What was measured of one policy under one load.
struct Figures {
    Samples words;
    Samples beats;
    Samples calls;
    std::int64_t faults = 0;
};

void throw_last(char const* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

// Each thread by itself; those that it makes later do as their maker.
void never_be_late(pid_t process) {
    sched_param const parameter{k_priority_of_neighbours};
    for (auto const& task : std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/task")) {
        if (::sched_setscheduler(std::stoi(task.path().filename()), SCHED_RR, &parameter) != 0) {
            throw_last("sched_setscheduler");
        }
    }
}

bool is_beat(nlohmann::json const& message) {
    return bench::has_members(message, {{"event", "notify"}, {"variables", {{"WATCHDOG", "1"}}}});
}

// After a word the service manager is asked for a machine state: a key that came then would wait for the bus. The first
// beat may be one of before.
void await_next_cycle(Machine& machine) {
    auto const from = machine.service_manager().position();
    int beats = 0;
    machine.service_manager().log().await(
        [&](nlohmann::json const& line) {
            beats += is_beat(line) ? 1 : 0;
            return beats == 2;
        },
        bench::Player::k_patience, from);
}

std::int64_t press_until(Machine& machine, char const* key, char const* word) {
    await_next_cycle(machine);
    auto& hypervisor = machine.hypervisor();
    auto const from = hypervisor.position();
    std::int64_t const pressed = hypervisor.command({{"do", "press"}, {"key", key}})["t"];
    return machine.await_word(word, from) - pressed;
}

void suspend_and_resume(Machine& machine, Samples& samples) {
    for (int i = 0; i < k_suspends; ++i) {
        auto const from = machine.hypervisor().position();
        samples.add(press_until(machine, "p", "preparing"));
        machine.await_word("prepared4sd", from);
        samples.add(press_until(machine, "r", "resuming"));
        machine.await_word("running", from);
    }
}

std::string line_of(Child_process const& process) {
    std::string line;
    char letter = 0;
    while (::read(process.output(), &letter, 1) == 1 && letter != '\n') {
        line += letter;
    }
    return line;
}

// By how much each beat came later than a period after the one before.
void add_lateness_of_beats(Machine& machine, std::size_t from, Samples& samples) {
    std::int64_t last = 0;
    auto const& messages = machine.service_manager().log().messages();
    for (auto i = from; i < messages.size(); ++i) {
        if (is_beat(messages[i])) {
            std::int64_t const now = messages[i]["t"];
            if (last != 0) {
                samples.add(std::max<std::int64_t>(0, now - last - k_period_ms * 1'000'000LL));
            }
            last = now;
        }
    }
}

// While the applications call, nothing else happens: the beats come from an idle driver.
void call_and_count_beats(Machine& machine, Figures& figures) {
    Child_process caller({BENCHMARK_CALLER, "1", "paced", std::to_string(k_milliseconds_of_calls)}, {});
    line_of(caller);
    never_be_late(caller.pid());
    auto const from = machine.service_manager().position();
    if (::write(caller.input(), "\n", 1) != 1) {
        throw_last("write");
    }
    std::istringstream times(line_of(caller));
    for (std::int64_t time = 0; times >> time;) {
        figures.calls.add(time);
    }
    add_lateness_of_beats(machine, from, figures.beats);
    caller.wait(k_patience);
}

std::int64_t major_faults(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    std::string word;
    for (int field = 1; field <= 12; ++field) {  // its name has no blank
        file >> word;
    }
    return std::stoll(word);
}

void measure(Machine& machine, Load const& load, Policy const& policy, Figures& figures) {
    auto const from = machine.hypervisor().position();
    auto const daemon = machine.start_daemon(policy.starter);
    machine.await_word("running", from);
    {
        auto const stress = machine.start(load.program);
        std::optional<benchmarks::Evicted_files> evicted;
        if (load.evicts) {
            evicted.emplace(daemon->pid());
        }
        suspend_and_resume(machine, figures.words);
        call_and_count_beats(machine, figures);
        figures.faults += major_faults(daemon->pid());
        if (stress->status()) {
            throw std::runtime_error("stress-ng has ended");
        }
        stress->signal(SIGINT);
        stress->wait(k_patience);
    }
    daemon->signal(SIGTERM);
    daemon->wait(k_patience);
}

void print_tail(std::string const& what, Samples const& samples) {
    std::printf("%-60s median %9.1f us   p99 %9.1f us   p99.9 %9.1f us   longest %9.1f us   (%zu samples)\n",
                what.c_str(), samples.median_us(), samples.p99_us(), samples.quantile_us(0.999),
                samples.quantile_us(1.0), samples.count());
}

void tell(Load const& load, std::array<Figures, k_policies.size()> const& figures) {
    for (auto const& [what, samples] :
         {std::pair{"key to word", &Figures::words}, {"beat, late", &Figures::beats}, {"call", &Figures::calls}}) {
        for (std::size_t i = 0; i < k_policies.size(); ++i) {
            print_tail(std::string(load.name) + ", " + k_policies[i].name + ", " + what, figures[i].*samples);
        }
        benchmarks::tell({std::string(what) + ", " + load.name + ", rr beside as shipped, p99",
                          (figures[1].*samples).p99_us(), (figures[0].*samples).p99_us(), "us",
                          benchmarks::at_most_times(k_target_ratio)});
    }
    for (std::size_t i = 0; i < k_policies.size(); ++i) {
        std::printf("%s, %s: %lld pages read from the disk\n", load.name, k_policies[i].name,
                    static_cast<long long>(figures[i].faults));
    }
}

int run(int rounds) {
    Machine machine(k_period_ms, 1);
    never_be_late(machine.hypervisor().process().pid());
    never_be_late(machine.service_manager().process().pid());
    for (auto const& load : loads()) {
        std::array<Figures, k_policies.size()> figures;
        for (int round = 0; round < rounds; ++round) {
            for (std::size_t i = 0; i < k_policies.size(); ++i) {
                measure(machine, load, k_policies[i], figures[i]);
            }
        }
        tell(load, figures);
    }
    return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
    int const wanted = argc > 1 ? std::atoi(argv[1]) : 0;
    int const rounds = wanted > 0 ? wanted : benchmarks::whole_or_short(k_rounds, k_short_rounds);
    return benchmarks::run_in_world("benchmark_load", [rounds] { return run(rounds); });
}
