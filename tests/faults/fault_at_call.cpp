// fault_at_call PLAN REPORT PROGRAM...: becomes the program, and lets those of its system calls fail that the file PLAN
// names (plan.h); without any, the file REPORT gets a line for each place that calls.
//
// A process beside it watches the program until its end: a filter of system calls (seccomp) stops a thread at the calls
// in question and at no others, and the watcher looks at the thread's stack to tell whether it is the one. Exit status
// 77, and the reason on standard error, where a process may not be watched: ptrace or seccomp is refused. What fails
// otherwise is a failure.

#include "allocation.h"
#include "support/watcher.h"
#include "tracer.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <system_error>
#include <vector>

#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr int k_not_allowed = 77;

int watch(pid_t program, char const* plan, char const* report, test_support::Tell_ready const& ready) {
    try {
        faults::Tracer tracer(program, faults::read_plan(plan), report);
        if (ready()) {
            tracer.run();
        }
        return 0;
    } catch (std::system_error const& error) {
        std::fprintf(stderr, "fault_at_call: %s\n", error.what());
        return error.code().value();
    } catch (std::exception const& error) {
        std::fprintf(stderr, "fault_at_call: %s\n", error.what());
        return ECANCELED;
    }
}

// From now on each of these calls stops its thread; all others go on as ever. 0, or the error.
int install_filter(std::vector<long> const& numbers) {
    constexpr unsigned k_load = BPF_LD | BPF_W | BPF_ABS;
    constexpr unsigned k_equal = BPF_JMP | BPF_JEQ | BPF_K;
    constexpr unsigned k_return = BPF_RET | BPF_K;
    std::vector<sock_filter> program{{k_load, 0, 0, offsetof(seccomp_data, nr)}};
    for (auto const number : numbers) {
        program.push_back({k_equal, 0, 1, static_cast<unsigned>(number)});
        program.push_back({k_return, 0, 0, SECCOMP_RET_TRACE});
    }
    program.push_back({k_return, 0, 0, SECCOMP_RET_ALLOW});
    sock_fprog const all{static_cast<unsigned short>(program.size()), program.data()};
    bool const installed =
        ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && ::syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, 0, &all) == 0;
    return installed ? 0 : errno;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 4) {
        std::fprintf(stderr, "usage: fault_at_call PLAN REPORT PROGRAM...\n");
        return EXIT_FAILURE;
    }
    auto const numbers = faults::watched_calls(faults::read_plan(argv[1]));
    if (std::find(numbers.begin(), numbers.end(), faults::k_allocation) != numbers.end()) {
        ::setenv("LD_PRELOAD",
                 (std::filesystem::read_symlink("/proc/self/exe").parent_path() / "libfailing_new.so").c_str(), 1);
    }
    int error = test_support::start_watcher(
        [argv](pid_t program, auto const& ready) { return watch(program, argv[1], argv[2], ready); });
    if (error == 0) {
        error = install_filter(numbers);
    }
    if (error != 0) {
        bool const is_refused = test_support::is_refusal(error);
        std::fprintf(stderr, "A process %s be watched here: %s\n", is_refused ? "may not" : "can't",
                     std::strerror(error));
        return is_refused ? k_not_allowed : EXIT_FAILURE;
    }
    ::execv(argv[3], argv + 3);
    std::fprintf(stderr, "%s can't be started: %s\n", argv[3], std::strerror(errno));
    return EXIT_FAILURE;
}
