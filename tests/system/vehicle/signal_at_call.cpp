// signal_at_call MOMENT PROGRAM...: becomes the program, and lets SIGTERM arrive at exactly one moment of its start:
//
//   handlers-installed   when its own handler of SIGTERM has just been installed
//   first-word           when the word "startingup" has just been written
//
// A process beside it watches the program's system calls until that moment, sends the signal, writes the file
// /tmp/signalled and goes. Exit status 77, and the reason on standard error, where a process may not be watched.

#include "support/watcher.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string_view>

#include <linux/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int k_not_allowed = 77;

/// The program's main thread, stopped at its system calls.
class Watched {
 public:
    explicit Watched(pid_t pid) : pid_(pid) {}

    bool begin() const {
        return trace(PTRACE_SEIZE, reinterpret_cast<void*>(PTRACE_O_TRACESYSGOOD)) &&
               trace(PTRACE_INTERRUPT, nullptr) && stopped();
    }
    void end() const { trace(PTRACE_DETACH, nullptr); }

    /// Runs to the next entry or exit of a system call; false when the program ends before.
    bool next_call() const {
        int signal_number = 0;
        for (;;) {
            int status = 0;
            if (!trace(PTRACE_SYSCALL, reinterpret_cast<void*>(static_cast<std::intptr_t>(signal_number))) ||
                ::waitpid(pid_, &status, __WALL) != pid_ || !WIFSTOPPED(status)) {
                return false;
            }
            if (WSTOPSIG(status) == (SIGTRAP | 0x80)) {
                return true;
            }
            signal_number = status >> 16 == 0 ? WSTOPSIG(status) : 0;
        }
    }

    ptrace_syscall_info call() const {
        ptrace_syscall_info info{};
        ::syscall(SYS_ptrace, PTRACE_GET_SYSCALL_INFO, pid_, sizeof info, &info);
        return info;
    }

    bool has_text_at(std::uint64_t address, std::string_view text) const {
        std::array<char, 16> found{};
        std::ifstream memory("/proc/" + std::to_string(pid_) + "/mem", std::ios::binary);
        memory.seekg(static_cast<std::streamoff>(address));
        memory.read(found.data(), static_cast<std::streamsize>(text.size()));
        return memory && std::string_view(found.data(), text.size()) == text;
    }

 private:
    bool trace(long request, void* data) const { return ::syscall(SYS_ptrace, request, pid_, nullptr, data) == 0; }
    bool stopped() const {
        int status = 0;
        return ::waitpid(pid_, &status, __WALL) == pid_ && WIFSTOPPED(status);
    }

    pid_t pid_;
};

bool is_the_moment(std::string_view moment, Watched const& program, ptrace_syscall_info const& call) {
    constexpr std::string_view first_word = "startingup";
    if (call.op != PTRACE_SYSCALL_INFO_ENTRY) {
        return false;
    }
    if (moment == "handlers-installed") {
        return call.entry.nr == SYS_rt_sigaction && call.entry.args[0] == SIGTERM && call.entry.args[1] != 0;
    }
    return call.entry.nr == SYS_write && call.entry.args[2] == first_word.size() &&
           program.has_text_at(call.entry.args[1], first_word);
}

int signal_at(std::string_view moment, pid_t pid, test_support::Tell_ready const& ready) {
    Watched const program(pid);
    if (!program.begin()) {
        return errno;
    }
    if (!ready()) {
        return 0;
    }
    while (program.next_call()) {
        if (is_the_moment(moment, program, program.call()) && program.next_call()) {
            ::syscall(SYS_tgkill, pid, pid, SIGTERM);
            std::ofstream("/tmp/signalled") << moment;
            program.end();
            return 0;
        }
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: signal_at_call MOMENT PROGRAM...\n");
        return EXIT_FAILURE;
    }
    int const error = test_support::start_watcher(
        [argv](pid_t program, auto const& ready) { return signal_at(argv[1], program, ready); });
    if (error != 0) {
        bool const is_refused = test_support::is_refusal(error);
        std::fprintf(stderr, "A process %s be watched here: %s\n", is_refused ? "may not" : "can't",
                     std::strerror(error));
        return is_refused ? k_not_allowed : EXIT_FAILURE;
    }
    ::setenv("LSAN_OPTIONS", "detect_leaks=0", 1);  // impossible in a process that is watched to its end
    ::execv(argv[2], argv + 2);
    std::fprintf(stderr, "%s can't be started: %s\n", argv[2], std::strerror(errno));
    return EXIT_FAILURE;
}
