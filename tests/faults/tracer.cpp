#include "tracer.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace faults {

namespace {

bool trace(long request, pid_t thread, void* data) {
    return ::syscall(SYS_ptrace, request, thread, nullptr, data) == 0;
}

void* as_data(long value) {
    return reinterpret_cast<void*>(static_cast<std::intptr_t>(value));  // NOLINT(performance-no-int-to-ptr): ptrace
}

// What a call on it takes or gives at once is a part of a stream or a whole message.
Subject socket_of(pid_t pid, long descriptor) {
    int type = SOCK_STREAM;
    int domain = AF_UNSPEC;
    socklen_t size = sizeof type;
    auto const process = static_cast<int>(::syscall(SYS_pidfd_open, pid, 0));
    auto const socket = static_cast<int>(::syscall(SYS_pidfd_getfd, process, descriptor, 0));
    ::getsockopt(socket, SOL_SOCKET, SO_TYPE, &type, &size);
    ::getsockopt(socket, SOL_SOCKET, SO_DOMAIN, &domain, &size);
    ::close(socket);
    ::close(process);
    if (domain == AF_NETLINK) {
        return Subject::other;  // the kernel itself is at its other end
    }
    return type == SOCK_STREAM ? Subject::stream : Subject::datagrams;
}

Subject subject_of(pid_t pid, long descriptor) {
    std::error_code error;
    auto const link =
        std::filesystem::read_symlink("/proc/" + std::to_string(pid) + "/fd/" + std::to_string(descriptor), error)
            .string();
    if (error) {
        return Subject::none;
    }
    if (link.rfind("socket:", 0) == 0) {
        return socket_of(pid, descriptor);
    }
    if (link.rfind("pipe:", 0) == 0) {
        return Subject::pipe;
    }
    if (link.rfind("anon_inode:", 0) == 0) {
        return Subject::other;
    }
    // A named pipe has the name of a file.
    return std::filesystem::is_fifo(link, error) ? Subject::pipe : Subject::file;
}

bool is_nonblocking(pid_t pid, long descriptor) {
    std::ifstream info("/proc/" + std::to_string(pid) + "/fdinfo/" + std::to_string(descriptor));
    for (std::string word; info >> word;) {
        if (word == "flags:" && info >> word) {
            return (std::stol(word, nullptr, 8) & O_NONBLOCK) != 0;
        }
    }
    return false;
}

bool asks_not_to_wait(user_regs_struct const& registers) {
    auto const number = static_cast<long>(registers.orig_rax);
    return ((number == SYS_recvfrom || number == SYS_sendto) && (registers.r10 & MSG_DONTWAIT) != 0) ||
           ((number == SYS_recvmsg || number == SYS_sendmsg) && (registers.rdx & MSG_DONTWAIT) != 0);
}

}  // namespace

std::vector<long> watched_calls(std::vector<Fault> const& plan) {
    std::vector<long> numbers;
    for (auto const& call : calls()) {
        bool const is_planned =
            std::any_of(plan.begin(), plan.end(), [&call](Fault const& fault) { return fault.call == call.number; });
        if (plan.empty() || is_planned) {
            numbers.push_back(call.number);
        }
    }
    return numbers;
}

Tracer::Tracer(pid_t pid, std::vector<Fault> plan, std::string const& report)
    : pid_(pid), plan_(std::move(plan)), met_(plan_.size()), report_file_(report), stacks_(pid) {
    write_report(report_file_, {});
    constexpr long options = PTRACE_O_TRACESECCOMP | PTRACE_O_TRACECLONE | PTRACE_O_TRACESYSGOOD;
    if (!trace(PTRACE_SEIZE, pid_, as_data(options))) {
        throw std::system_error(errno, std::generic_category(), "ptrace");
    }
}

void Tracer::run() {
    int status = 0;
    for (pid_t thread = 0; (thread = ::waitpid(-1, &status, __WALL)) > 0;) {
        if (WIFSTOPPED(status)) {
            stopped(thread, status);
        }
    }
    for (auto const& [id, site] : sites_) {
        report_.sites.push_back(site);
    }
    report_.watcher = ::getpid();
    write_report(report_file_, report_);
}

void Tracer::stopped(pid_t thread, int status) {
    int const event = status >> 16;
    int const number = WSTOPSIG(status);
    long request = PTRACE_CONT;
    long signal_number = 0;
    if (event == PTRACE_EVENT_SECCOMP) {
        request = at_call(thread) ? PTRACE_SYSCALL : PTRACE_CONT;
    } else if (number == (SIGTRAP | 0x80)) {
        after_call(thread);
    } else if (event == PTRACE_EVENT_STOP && number != SIGTRAP) {
        request = PTRACE_LISTEN;  // the whole process stands still
    } else if (event == 0) {
        signal_number = number;
    }
    trace(request, thread, as_data(signal_number));
}

// Whether the call's return is to be met as well.
bool Tracer::at_call(pid_t thread) {
    user_regs_struct registers{};
    if (!trace(PTRACE_GETREGS, thread, &registers)) {
        return false;
    }
    auto const* const call = call_of(static_cast<long>(registers.orig_rax));
    if (call == nullptr) {
        return false;
    }
    return plan_.empty() ? survey(thread, registers, *call) : inject(thread, registers, *call);
}

bool Tracer::survey(pid_t thread, user_regs_struct const& registers, Call const& call) {
    auto const stack = stacks_.of(thread, call.number);
    if (!stack.is_of_loader) {
        auto& site = sites_[stack.id];
        if (++site.count == 1) {
            site = describe(call, registers, stack);
        }
    }
    return false;
}

bool Tracer::inject(pid_t thread, user_regs_struct const& registers, Call const& call) {
    auto const is_open = [this, &call](std::size_t place) {
        return plan_[place].call == call.number && met_[place] < plan_[place].position;
    };
    std::vector<std::size_t> candidates;
    for (std::size_t place = 0; place < plan_.size(); ++place) {
        if (is_open(place)) {
            candidates.push_back(place);
        }
    }
    if (candidates.empty()) {
        return false;
    }
    auto const stack = stacks_.of(thread, call.number);
    for (auto const place : candidates) {
        if (plan_[place].site == stack.id && ++met_[place] == plan_[place].position) {
            ++report_.hits;
            return apply(thread, registers, call, plan_[place]);
        }
    }
    return false;
}

bool Tracer::apply(pid_t thread, user_regs_struct registers, Call const& call, Fault const& fault) {
    if (fault.way == Way::is_met_by_a_signal) {
        ::kill(pid_, fault.value);
        return false;
    }
    if (fault.way == Way::is_short) {
        returning_[thread] = {false, registers, 0};
        registers.rdx = std::max<unsigned long long>(registers.rdx / 2, 1);
        return trace(PTRACE_SETREGS, thread, &registers);
    }
    if (call.number == SYS_close) {  // is done all the same
        returning_[thread] = {true, registers, fault.value};
        return true;
    }
    registers.orig_rax = ~0ULL;  // no call
    registers.rax = static_cast<unsigned long long>(-fault.value);
    trace(PTRACE_SETREGS, thread, &registers);
    return false;
}

// A call leaves the registers of its arguments as they were.
void Tracer::after_call(pid_t thread) {
    auto const found = returning_.find(thread);
    user_regs_struct registers{};
    if (found == returning_.end() || !trace(PTRACE_GETREGS, thread, &registers)) {
        return;
    }
    registers.rdx = found->second.before.rdx;
    if (found->second.has_failed) {
        registers.rax = static_cast<unsigned long long>(-found->second.error);
    }
    trace(PTRACE_SETREGS, thread, &registers);
    returning_.erase(found);
}

Site Tracer::describe(Call const& call, user_regs_struct const& registers, Call_stack const& stack) const {
    Site site;
    site.count = 1;
    site.call = call.number;
    site.id = stack.id;
    site.frames = stacks_.names(stack);
    if (call.use != Use::none) {
        auto const descriptor = static_cast<long>(registers.rdi);
        site.subject = subject_of(pid_, descriptor);
        site.is_nonblocking = is_nonblocking(pid_, descriptor) || asks_not_to_wait(registers);
    }
    return site;
}

}  // namespace faults
