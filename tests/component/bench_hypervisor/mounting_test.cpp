#include "base/end_signals.h"
#include "mounted_fixture.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <signal.h>
#include <sys/wait.h>

namespace bench::hypervisor {
namespace {

using namespace std::chrono_literals;

class Mounting_test : public Mounted_fixture {
 protected:
    bool is_mounted() const { return is_mounted(directory.path()); }

    static bool is_mounted(std::string const& path) {
        std::ifstream mounts("/proc/self/mounts");
        for (std::string line; std::getline(mounts, line);) {
            if (line.find(" " + path + " ") != std::string::npos) {
                return true;
            }
        }
        return false;
    }
};

TEST_F(Mounting_test, The_end_of_the_commands_unmounts_and_ends_with_status_0) {
    EXPECT_TRUE(is_mounted());
    sut->process().close_input();
    EXPECT_EQ(sut->process().wait(10s), 0);
    EXPECT_FALSE(is_mounted());
}

TEST_F(Mounting_test, A_signal_that_ends_programs_unmounts_and_ends_with_status_0) {
    auto const heeded = base::heeded_end_signals();
    for (int const number : base::k_end_signals) {
        base::Temporary_directory const other;
        Player player({BENCH_HYPERVISOR, other.path()});
        EXPECT_TRUE(is_mounted(other.path()));
        bool const is_heeded = sigismember(&heeded, number) == 1;
        player.process().signal(is_heeded ? number : SIGTERM);
        EXPECT_EQ(player.process().wait(10s), 0) << number;
        EXPECT_FALSE(is_mounted(other.path())) << number;
    }
}

TEST_F(Mounting_test, The_death_of_whoever_started_it_unmounts_too) {
    base::Temporary_directory const other;
    pid_t const starter = ::fork();
    if (starter == 0) {
        Player const player({BENCH_HYPERVISOR, other.path()});
        ::raise(SIGKILL);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(starter, &status, 0), starter);
    ASSERT_TRUE(WIFSIGNALED(status));
    auto const end = std::chrono::steady_clock::now() + 10s;
    while (is_mounted(other.path()) && std::chrono::steady_clock::now() < end) {
        std::this_thread::yield();
    }
    EXPECT_FALSE(is_mounted(other.path()));
}

TEST_F(Mounting_test, Programs_that_wait_are_let_go_when_the_hypervisor_ends) {
    Opened const device(path("input/event0"), O_RDONLY | O_NONBLOCK);
    Watched const watched(device);
    EXPECT_EQ(watched.wait(0), 0U);
    sut->process().close_input();
    EXPECT_EQ(sut->process().wait(10s), 0);
    EXPECT_NE(watched.wait(k_patience_ms) & EPOLLERR, 0U);
}

TEST_F(Mounting_test, A_user_namespace_can_mount_its_own) {
    base::Temporary_directory const other;
    Child_process probe({"unshare", "--user", "--map-root-user", "--mount", "true"}, {});
    if (probe.wait(10s) != 0) {
        GTEST_SKIP() << "this machine allows no user namespaces (sysctl kernel.unprivileged_userns_clone or "
                        "user.max_user_namespaces)";
    }
    Player player({"unshare", "--user", "--map-root-user", "--mount", BENCH_HYPERVISOR, other.path()});
    EXPECT_EQ(player.command({{"do", "list"}})["ok"], true);
    EXPECT_FALSE(std::filesystem::exists(other.path() / "input"));  // the mount is in that namespace only
}

/// The program run by an ordinary user, on a machine whose /dev/fuse is open to that user or is not.
class Ordinary_user_test : public testing::Test {
 protected:
    static constexpr uid_t k_nobody = 65534;

    void SetUp() override {
        if (std::string const missing = missing_for_fuse(); !missing.empty()) {
            GTEST_SKIP() << missing;
        }
        if (::geteuid() != 0) {
            GTEST_SKIP() << "only root can become another user; run the tests as root for this one";
        }
        if (Child_process probe(as_nobody({"test", "-x", BENCH_HYPERVISOR}), {}); probe.wait(10s) != 0) {
            GTEST_SKIP() << BENCH_HYPERVISOR << " lies where other users have no access";
        }
        if (Child_process probe({"unshare", "--mount", "true"}, {}); probe.wait(10s) != 0) {
            GTEST_SKIP() << "unshare can't make mounts private here; in a chroot, mount its directory on itself first";
        }
        ASSERT_EQ(::chown(directory.path().c_str(), k_nobody, k_nobody), 0);
    }

    static std::vector<std::string> as_nobody(std::vector<std::string> const& words) {
        std::vector<std::string> result{"setpriv", "--reuid", "65534", "--regid", "65534", "--clear-groups"};
        result.insert(result.end(), words.begin(), words.end());
        return result;
    }

    // The words, run in a mount namespace in which /dev/fuse has the given mode.
    static std::vector<std::string> with_fuse_mode(std::string const& mode, std::vector<std::string> const& words) {
        std::vector<std::string> result{"unshare",
                                        "--mount",
                                        "sh",
                                        "-c",
                                        "mount -t tmpfs tmpfs /mnt && mknod -m " + mode +
                                            R"( /mnt/fuse c 10 229 && mount --bind /mnt/fuse /dev/fuse && exec "$@")",
                                        "sh"};
        result.insert(result.end(), words.begin(), words.end());
        return result;
    }

    base::Temporary_directory directory;
};

TEST_F(Ordinary_user_test, The_mount_helper_mounts_where_the_user_may_open_the_device) {
    if (::access("/usr/bin/fusermount3", X_OK) != 0) {
        GTEST_SKIP() << "fusermount3 is missing (apt-get install fuse3)";
    }
    Player sut(with_fuse_mode("666", as_nobody({BENCH_HYPERVISOR, directory.path()})));
    EXPECT_EQ(sut.command({{"do", "list"}})["ok"], true);
    sut.process().close_input();
    EXPECT_EQ(sut.process().wait(10s), 0);
}

TEST_F(Ordinary_user_test, A_user_namespace_mounts_where_the_user_may_open_the_device) {
    std::vector<std::string> const in_namespace{"unshare", "--user", "--map-root-user", "--mount"};
    auto words = in_namespace;
    words.emplace_back("true");
    if (Child_process probe(as_nobody(words), {}); probe.wait(10s) != 0) {
        GTEST_SKIP() << "this machine allows ordinary users no user namespaces (sysctl user.max_user_namespaces)";
    }
    words = in_namespace;
    words.insert(words.end(), {BENCH_HYPERVISOR, directory.path()});
    Player sut(with_fuse_mode("666", as_nobody(words)));
    EXPECT_EQ(sut.command({{"do", "list"}})["ok"], true);
}

TEST_F(Ordinary_user_test, A_device_that_the_user_may_not_open_is_named_with_the_remedy) {
    std::string const errors = directory.file("errors");
    std::string const redirected = "exec \"$0\" \"$1\" 2>\"$2\"";
    Child_process sut(
        with_fuse_mode("600", as_nobody({"sh", "-c", redirected, BENCH_HYPERVISOR, directory.path(), errors})), {});
    EXPECT_EQ(sut.wait(10s), 1);
    std::ifstream file(errors);
    std::string const text{std::istreambuf_iterator<char>(file), {}};
    EXPECT_NE(text.find("this user may not open /dev/fuse (chmod 0666 /dev/fuse"), std::string::npos) << text;
}

}  // namespace
}  // namespace bench::hypervisor
