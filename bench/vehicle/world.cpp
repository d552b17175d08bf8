#include "bench/vehicle/world.h"

#include "base/end_signals.h"
#include "bench/process/end_signals.h"
#include "bench/vehicle/new_root.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <fstream>
#include <stdexcept>

#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace bench::vehicle {

namespace {

[[noreturn]] void fail(std::string const& what, std::string const& remedy) {
    throw std::runtime_error(what + ": " + std::strerror(errno) + ". " + remedy);
}

void write_setting(char const* path, std::string const& text) {
    if (!(std::ofstream(path) << text << std::flush)) {
        fail(std::string(path) + " can't be written", "Run this as root");
    }
}

// An ordinary user becomes root of a user namespace; its files outside stay the user's.
void become_root() {
    auto const user = std::to_string(::geteuid());
    auto const group = std::to_string(::getegid());
    if (::unshare(CLONE_NEWUSER) != 0) {
        fail("A user namespace can't be made",
             "Run this as root, or allow them: sysctl kernel.unprivileged_userns_clone=1 (in a container: run it with "
             "the right to make namespaces)");
    }
    write_setting("/proc/self/setgroups", "deny");
    write_setting("/proc/self/uid_map", "0 " + user + " 1");
    write_setting("/proc/self/gid_map", "0 " + group + " 1");
}

void bring_loopback_up() {
    int const socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    ifreq request{};
    std::strcpy(request.ifr_name, "lo");
    request.ifr_flags = IFF_UP | IFF_RUNNING;
    bool const failed = ::ioctl(socket, SIOCSIFFLAGS, &request) != 0;
    ::close(socket);
    if (failed) {
        fail("The loopback interface can't be brought up", "");
    }
}

int await(pid_t child) {
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : k_signal_status + WTERMSIG(status);
}

volatile pid_t awaited_child = 0;

void pass_on(int number) {
    ::kill(awaited_child, number);
}

void end(int number) {
    ::_exit(k_signal_status + number);
}

// What ends a program is for the innermost one, which has all the others inside end with it.
int await_passing_on_signals(pid_t child) {
    auto const signals = base::end_signals();
    awaited_child = child;
    base::handle_end_signals(pass_on);
    ::sigprocmask(SIG_UNBLOCK, &signals, nullptr);
    int const status = await(child);
    base::handle_end_signals(SIG_DFL);
    return status;
}

// Runs `action` in a process of its own and returns its result; a failure is told on standard error. The signals that
// end a program are held back in the new process.
int run_in_child(std::function<int()> const& action) {
    auto const signals = base::end_signals();
    ::sigprocmask(SIG_BLOCK, &signals, nullptr);
    pid_t const child = ::fork();
    if (child < 0) {
        fail("A process can't be started", "");
    }
    if (child > 0) {
        return await_passing_on_signals(child);
    }
    try {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        ::_exit(action());
    } catch (std::exception const& error) {
        std::fprintf(stderr, "%s\n", error.what());
        ::_exit(k_no_world);
    }
}

// Not before the new root is there: what it is put together on would stay. The first process of a world has to handle
// signals, or it does not get them.
void end_at_signals() {
    auto const signals = base::end_signals();
    base::handle_end_signals(end);
    ::sigprocmask(SIG_UNBLOCK, &signals, nullptr);
}

void make_namespaces() {
    if (::access("/dev/fuse", R_OK | W_OK) != 0) {
        fail("/dev/fuse can't be opened",
             "The hypervisor's devices are played by FUSE: load the module (modprobe fuse), give this user access to "
             "/dev/fuse, or run this as root");
    }
    if (::geteuid() != 0) {
        become_root();
    }
    if (::unshare(CLONE_NEWNS | CLONE_NEWUTS | CLONE_NEWIPC | CLONE_NEWNET | CLONE_NEWPID) != 0) {
        fail("Namespaces can't be made",
             "Run this as root with the capability CAP_SYS_ADMIN (in a container: run it privileged)");
    }
}

}  // namespace

// The caller stays out of the namespaces: whoever makes a process namespace can start nothing more once its first
// process has ended.
int run_inside(std::string const& project, std::function<int()> const& inside) {
    return run_in_child([&] {
        make_namespaces();
        return run_in_child([&] {
            move_into_new_root(project);
            ::unsetenv("TMPDIR");  // the host's, which may lie in what is private here
            bring_loopback_up();
            end_at_signals();
            return inside();
        });
    });
}

void set_host_name(std::string const& name) {
    if (::sethostname(name.data(), name.size()) != 0) {
        fail("The host name can't be set to " + name, "");
    }
}

}  // namespace bench::vehicle
