// What the daemon costs while nothing happens, at a period of 100 ms: processor time of its threads and resident
// memory. Beside it, at the same time on the same machine, a program that does nothing but wait and report alive. Three
// times: with every message logged, after a viewer has asked for info, and so again with network management, its 20
// service instances offered, and 45 clients that are connected.

#include "benchmarks/machine/figures.h"
#include "benchmarks/machine/machine.h"
#include "process_usage.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <unistd.h>

namespace {

using bench::Child_process;
using benchmarks::Machine;

constexpr std::chrono::seconds k_settling{2};
constexpr int k_seconds = 10;
constexpr int k_short_seconds = 5;
constexpr unsigned k_applications = 16;  // and four instances more
constexpr std::size_t k_clients = 45;
constexpr std::uint8_t k_info = 4;
constexpr double k_target_mib = 9.0;

double percent(std::int64_t time_ns, int seconds) {
    return static_cast<double>(time_ns) / 1e7 / seconds;
}

void print(std::string const& what, benchmarks::Usage const& usage, int seconds) {
    std::printf("%s, by thread:\n", what.c_str());
    for (auto const& [id, thread] : usage) {
        std::printf("  %-16s %.4f %% of a core, %.1f runs a second\n", thread.name.c_str(),
                    percent(thread.running_ns, seconds), static_cast<double>(thread.runs) / seconds);
    }
}

/// The daemon and the yardstick beside each other in one machine.
class Idle_pair {
 public:
    explicit Idle_pair(Machine& machine)
        : heartbeat_(machine.start({BENCHMARK_HEARTBEAT, benchmarks::k_input_device, benchmarks::k_status_file})) {
        machine.await_word("running", 0);
        auto const from = machine.hypervisor().position();
        daemon_ = machine.start_daemon();
        machine.await_word("running", from);
    }
    ~Idle_pair() {
        heartbeat_->signal(SIGKILL);
        daemon_->signal(SIGTERM);
        daemon_->wait(std::chrono::seconds(5));
    }
    Idle_pair(Idle_pair const&) = delete;
    Idle_pair& operator=(Idle_pair const&) = delete;

    void tell_processor(std::string const& what, double most) const {
        int const seconds = benchmarks::whole_or_short(k_seconds, k_short_seconds);
        std::this_thread::sleep_for(k_settling);
        auto const heartbeat_before = benchmarks::usage_of(heartbeat_->pid());
        auto const daemon_before = benchmarks::usage_of(daemon_->pid());
        std::this_thread::sleep_for(std::chrono::seconds(seconds));
        auto const heartbeat = benchmarks::usage_of(heartbeat_->pid()) - heartbeat_before;
        auto const daemon = benchmarks::usage_of(daemon_->pid()) - daemon_before;
        print(what, daemon, seconds);
        benchmarks::tell({what, percent(running_ns(daemon), seconds), percent(running_ns(heartbeat), seconds),
                          "% of a core", benchmarks::at_most_times(most)});
    }

    void tell_memory(std::string const& what) const {
        auto const memory = benchmarks::memory_of(daemon_->pid());
        std::printf("%s: %.2f MiB of no file\n", what.c_str(), static_cast<double>(memory.anonymous_kib) / 1024.0);
        benchmarks::tell(
            {what, static_cast<double>(memory.resident_kib) / 1024.0, 0.0, "MiB", benchmarks::at_most(k_target_mib)});
    }

 private:
    std::unique_ptr<Child_process> heartbeat_;
    std::unique_ptr<Child_process> daemon_;
};

void await_line(Child_process& process) {
    char byte = 0;
    while (byte != '\n' && ::read(process.output(), &byte, 1) == 1) {
    }
}

void measure_alone() {
    Machine machine;
    Idle_pair const pair(machine);
    pair.tell_processor("idle, every message logged", 2.2);
    machine.log().set_level("STMG", "DFLT", k_info);
    pair.tell_processor("idle, info logged", 1.5);
    pair.tell_memory("idle, resident memory");
}

void measure_among_clients() {
    Machine machine(100, k_applications);
    Idle_pair const pair(machine);
    std::vector<std::unique_ptr<Child_process>> clients;
    while (clients.size() < k_clients) {
        clients.push_back(std::make_unique<Child_process>(std::vector<std::string>{BENCHMARK_CALL_PEER, "idle", "1"},
                                                          std::vector<std::string>{}));
        await_line(*clients.back());
    }
    machine.log().set_level("STMG", "DFLT", k_info);
    pair.tell_processor("idle among 45 clients, info logged", 1.8);
    pair.tell_memory("idle among 45 clients, resident memory");
}

int run() {
    measure_alone();
    measure_among_clients();
    return EXIT_SUCCESS;
}

}  // namespace

int main() {
    return benchmarks::run_in_world("benchmark_idle", &run);
}
