#include "bench/vehicle/private_mounts.h"
#include "bench/vehicle/world.h"

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include <gtest/gtest.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/sysmacros.h>
#include <sys/wait.h>
#include <unistd.h>

namespace bench::vehicle {
namespace {

constexpr uid_t k_nobody = 65534;

[[noreturn]] void run_and_exit() {
    std::exit(run_inside("/", [] { return 0; }));
}

void become_nobody() {
    if (::setresgid(k_nobody, k_nobody, k_nobody) != 0 || ::setresuid(k_nobody, k_nobody, k_nobody) != 0 ||
        ::prctl(PR_SET_DUMPABLE, 1) != 0) {  // as after the start of a program
        std::abort();
    }
}

// As in a container whose system call filter refuses it.
void forbid_namespaces() {
    sock_filter program[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, static_cast<unsigned>(offsetof(seccomp_data, nr))),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(SYS_unshare), 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | static_cast<unsigned>(EPERM)),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    sock_fprog const filter{sizeof program / sizeof program[0], program};
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 || ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) != 0) {
        std::abort();
    }
}

// This process alone sees a /dev/fuse with that mode.
void give_fuse_mode(mode_t mode) {
    constexpr unsigned k_major = 10;
    constexpr unsigned k_minor = 229;
    ::umask(0);
    if (::unshare(CLONE_NEWNS) != 0) {
        std::abort();
    }
    make_mounts_private();
    if (::mount("tmpfs", "/run", "tmpfs", 0, "mode=755") != 0 ||
        ::mknod("/run/fuse", S_IFCHR | mode, makedev(k_major, k_minor)) != 0 ||
        ::mount("/run/fuse", "/dev/fuse", nullptr, MS_BIND, nullptr) != 0) {
        std::abort();
    }
}

class Requirements : public testing::Test {
 protected:
    void SetUp() override {
        testing::FLAGS_gtest_death_test_style = "fast";
        if (::geteuid() != 0) {
            GTEST_SKIP() << "only root can take these things away from a process";
        }
        if (::access("/dev/fuse", R_OK | W_OK) != 0) {
            GTEST_SKIP() << "/dev/fuse is missing here, which hides every other reason";
        }
    }
};

TEST_F(Requirements, Are_told_when_namespaces_are_forbidden) {
    EXPECT_EXIT(
        {
            forbid_namespaces();
            run_and_exit();
        },
        testing::ExitedWithCode(k_no_world),
        "Namespaces can't be made: Operation not permitted. Run this as root with the capability CAP_SYS_ADMIN");
}

TEST_F(Requirements, Are_told_to_an_ordinary_user_who_may_not_have_a_namespace) {
    EXPECT_EXIT(
        {
            give_fuse_mode(0666);
            forbid_namespaces();
            become_nobody();
            run_and_exit();
        },
        testing::ExitedWithCode(k_no_world),
        "A user namespace can't be made: Operation not permitted. Run this as root, or allow them: "
        "sysctl kernel.unprivileged_userns_clone=1");
}

TEST_F(Requirements, Are_told_to_an_ordinary_user_who_may_not_use_fuse) {
    EXPECT_EXIT(
        {
            give_fuse_mode(0600);
            become_nobody();
            run_and_exit();
        },
        testing::ExitedWithCode(k_no_world),
        "/dev/fuse can't be opened: Permission denied.*load the module \\(modprobe fuse\\)");
}

// What the kernel answers to an ordinary user who wants a user namespace: 0, or the number of the error.
int answer_to_user_namespace() {
    pid_t const child = ::fork();
    if (child == 0) {
        become_nobody();
        ::_exit(::unshare(CLONE_NEWUSER) == 0 ? 0 : errno);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : ECHILD;
}

TEST_F(Requirements, Are_met_by_an_ordinary_user_with_namespaces) {
    if (int const error = answer_to_user_namespace(); error != 0) {
        GTEST_SKIP() << "the kernel refuses user namespaces here (as it does in a chroot): " << std::strerror(error);
    }
    EXPECT_EXIT(
        {
            give_fuse_mode(0666);
            become_nobody();
            run_and_exit();
        },
        testing::ExitedWithCode(0), "^$");
}

}  // namespace
}  // namespace bench::vehicle
