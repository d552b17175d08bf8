// What the daemon holds after very many suspends:
//
//     benchmark_suspend_memory [SUSPENDS]
//
// Suspends and resumes the machine again and again, with a client in each group, and prints what the daemon has
// resident and allocated at the start, at the end, and at most in between.

#include "benchmarks/machine/figures.h"
#include "benchmarks/machine/machine.h"
#include "benchmarks/machine/process_memory.h"
#include "prompt_clients.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

// Whatever is kept for the first requests, and the newest events, is there by then.
constexpr int k_warm_up = 100;
constexpr int k_suspends = 500;
constexpr int k_short_suspends = 100;
constexpr int k_looks = 20;
constexpr unsigned k_period_ms = 1;
constexpr int k_info = 4;

void suspend(benchmarks::Machine& machine, benchmarks::Prompt_clients const& clients, int times) {
    auto const go = [&](char const* key, char const* word) {
        auto const from = machine.hypervisor().position();
        machine.hypervisor().command({{"do", "press"}, {"key", key}});
        machine.await_word(word, from);
    };
    for (; times > 0; --times) {
        auto const answers = clients.answers();
        go("p", "prepared4sd");
        go("r", "running");
        clients.await_answers(answers + 2);
        machine.log().take();  // of which there would be gigabytes
    }
}

int run(int suspends) {
    benchmarks::Machine machine(k_period_ms);
    auto const from = machine.hypervisor().position();
    auto const daemon = machine.start_daemon({"/usr/bin/env", "LD_PRELOAD=" MEMORY_TELLER});
    machine.await_word("running", from);
    machine.log().set_level("STMG", "DFLT", k_info);
    benchmarks::Prompt_clients const clients;
    suspend(machine, clients, k_warm_up);
    benchmarks::Memory_course course;
    course.add(benchmarks::memory_of(*daemon));
    for (int part = 0; part < k_looks; ++part) {
        suspend(machine, clients, suspends / k_looks);
        course.add(benchmarks::memory_of(*daemon));
    }
    std::printf("%d suspends\n", suspends / k_looks * k_looks);
    course.print("daemon");
    course.tell("many suspends", "daemon");
    daemon->signal(SIGTERM);
    daemon->wait(std::chrono::seconds(5));
    return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
    bool const is_told = argc > 1 && argv[1][0] != '-';  // other words are for programs that repeat
    int const suspends = is_told ? std::stoi(argv[1]) : benchmarks::whole_or_short(k_suspends, k_short_suspends);
    return benchmarks::run_in_world("benchmark_suspend_memory", [suspends] { return run(suspends); });
}
