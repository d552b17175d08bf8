#include "stepped_thread.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <utility>

#include <elf.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/user.h>
#include <sys/wait.h>

namespace benchmarks {

namespace {

#if defined(__x86_64__)
constexpr std::uint64_t k_call_instruction = 0x050f;  // syscall
constexpr std::uint64_t k_call_mask = 0xffff;
std::uint64_t place_of(user_regs_struct const& registers) {
    return registers.rip;
}
Call call_in(user_regs_struct const& registers) {
    return {static_cast<long>(registers.rax), {registers.rdi, registers.rsi, registers.rdx}};
}
#elif defined(__aarch64__)
constexpr std::uint64_t k_call_instruction = 0xd4000001;  // svc 0
constexpr std::uint64_t k_call_mask = 0xffffffff;
std::uint64_t place_of(user_regs_struct const& registers) {
    return registers.pc;
}
Call call_in(user_regs_struct const& registers) {
    return {static_cast<long>(registers.regs[8]), {registers.regs[0], registers.regs[1], registers.regs[2]}};
}
#endif

bool is_wait_for_input(Call const& call) {
#ifdef SYS_epoll_wait
    if (call.number == SYS_epoll_wait) {
        return true;
    }
#endif
    return call.number == SYS_epoll_pwait;
}

[[noreturn]] void fail(char const* what) {
    throw std::runtime_error(std::string("the daemon can't be led: ") + what + ": " + std::strerror(errno));
}

}  // namespace

Stepped_thread::Stepped_thread(pid_t process) : process_(process) {
    int status = 0;
    if (::ptrace(PTRACE_SEIZE, process_, nullptr, nullptr) != 0 ||
        ::ptrace(PTRACE_INTERRUPT, process_, nullptr, nullptr) != 0 ||
        ::waitpid(process_, &status, __WALL) != process_ || !WIFSTOPPED(status)) {
        fail("PTRACE_SEIZE");
    }
}

Stepped_thread::~Stepped_thread() {
    ::ptrace(PTRACE_DETACH, process_, nullptr, nullptr);
}

Work Stepped_thread::until_it_waits() {
    return until([](Call const& call) { return is_wait_for_input(call); });
}

Work Stepped_thread::until_it_writes(std::string const& text) {
    return until([this, &text](Call const& call) {
        return call.number == SYS_write && call.argument[2] == text.size() && has_text_at(call.argument[1], text);
    });
}

std::map<std::string, std::uint64_t> Stepped_thread::take_shares() {
    std::map<std::uint64_t, std::pair<std::uint64_t, std::string>> files;  // by the begin: end and name
    std::ifstream maps("/proc/" + std::to_string(process_) + "/maps");
    for (std::string line; std::getline(maps, line);) {
        std::uint64_t begin = 0;
        std::uint64_t end = 0;
        char dash = 0;
        std::istringstream(line) >> std::hex >> begin >> dash >> end;
        files[begin] = {end, line.substr(line.find_last_of(" /") + 1)};
    }
    std::map<std::string, std::uint64_t> shares;
    for (auto const& [address, times] : done_) {
        auto const next = files.upper_bound(address);
        bool const is_known = next != files.begin() && address < std::prev(next)->second.first;
        shares[is_known ? std::prev(next)->second.second : "?"] += times;
    }
    done_.clear();
    return shares;
}

// It leaves the call at which it stands before it looks for the next one.
template <class Predicate>
Work Stepped_thread::until(Predicate const& is_there) {
    Work work;
    Call call;
    bool at_call = is_at_call(call);
    do {
        work.calls += at_call ? 1 : 0;
        step();
        ++work.instructions;
        at_call = is_at_call(call);
    } while (!at_call || !is_there(call));
    return work;
}

void Stepped_thread::step() {
    int status = 0;
    if (::ptrace(PTRACE_SINGLESTEP, process_, nullptr, nullptr) != 0 ||
        ::waitpid(process_, &status, __WALL) != process_ || !WIFSTOPPED(status)) {
        fail("PTRACE_SINGLESTEP");
    }
}

bool Stepped_thread::is_at_call(Call& call) {
    user_regs_struct registers{};
    iovec place{&registers, sizeof registers};
    if (::ptrace(PTRACE_GETREGSET, process_, NT_PRSTATUS, &place) != 0) {
        fail("PTRACE_GETREGSET");
    }
    auto const address = place_of(registers);
    ++done_[address];
    auto known = is_call_.find(address);
    if (known == is_call_.end()) {
        auto const word = static_cast<std::uint64_t>(::ptrace(PTRACE_PEEKTEXT, process_, address, nullptr));
        known = is_call_.emplace(address, (word & k_call_mask) == k_call_instruction).first;
    }
    if (known->second) {
        call = call_in(registers);
    }
    return known->second;
}

bool Stepped_thread::has_text_at(std::uint64_t address, std::string const& text) const {
    std::string found(text.size(), '\0');
    iovec here{found.data(), found.size()};
    iovec there{reinterpret_cast<void*>(address), text.size()};
    return ::process_vm_readv(process_, &here, 1, &there, 1, 0) == static_cast<ssize_t>(text.size()) && found == text;
}

}  // namespace benchmarks
