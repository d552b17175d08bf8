#include "benchmarks/machine/process_memory.h"

#include "benchmarks/machine/figures.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include <malloc.h>
#include <unistd.h>

namespace benchmarks {

namespace {

constexpr double k_most_growth = 64.0;  // KiB

[[noreturn]] void tell_end() {
    throw std::runtime_error("The process whose memory is asked for has ended");
}

}  // namespace

Process_memory own_memory() {
    std::ifstream status("/proc/self/status");
    long resident = 0;
    for (std::string word; status >> word && word != "VmRSS:";) {
    }
    status >> resident;
    auto const heap = ::mallinfo2();
    return {resident, static_cast<long>((heap.uordblks + heap.hblkhd) / 1024)};
}

void answer_with_memory() {
    char byte = 0;
    while (::read(STDIN_FILENO, &byte, 1) > 0) {
        auto const memory = own_memory();
        auto const answer = std::to_string(memory.resident) + ' ' + std::to_string(memory.allocated) + '\n';
        if (::write(STDOUT_FILENO, answer.data(), answer.size()) < 0) {
            return;
        }
    }
}

std::string line_of(bench::Child_process& process) {
    std::string line;
    for (char letter = 0; letter != '\n'; line += letter) {
        if (::read(process.output(), &letter, 1) != 1) {
            tell_end();
        }
    }
    return line;
}

Process_memory memory_of(bench::Child_process& process) {
    if (::write(process.input(), "\n", 1) != 1) {
        tell_end();
    }
    Process_memory memory{};
    std::istringstream(line_of(process)) >> memory.resident >> memory.allocated;
    return memory;
}

void Memory_course::add(Process_memory const& now) {
    first_ = count_++ == 0 ? now : first_;
    last_ = now;
    most_ = {std::max(most_.resident, now.resident), std::max(most_.allocated, now.allocated)};
}

void Memory_course::print(std::string const& process) const {
    auto const* name = process.c_str();
    std::printf("%-7s resident %6ld KiB at the start, %6ld at the end, %6ld at most\n", name, first_.resident,
                last_.resident, most_.resident);
    std::printf("%-7s allocated %5ld KiB at the start, %6ld at the end, %6ld at most\n", name, first_.allocated,
                last_.allocated, most_.allocated);
}

void Memory_course::tell(std::string const& doings, std::string const& process) const {
    auto const row = [&](char const* size, long ours, long yardstick) {
        benchmarks::tell({doings + ", " + process + ' ' + size + " at the end", static_cast<double>(ours),
                          static_cast<double>(yardstick), "KiB", at_most_more(k_most_growth)});
    };
    row("resident", last_.resident, first_.resident);
    row("allocated", last_.allocated, first_.allocated);
}

}  // namespace benchmarks
