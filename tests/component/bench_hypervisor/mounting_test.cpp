#include "mounted_fixture.h"

#include <filesystem>
#include <fstream>

#include <signal.h>
#include <sys/wait.h>

namespace bench::hypervisor {
namespace {

using namespace std::chrono_literals;

class Mounting_test : public Mounted_fixture {
 protected:
    bool is_mounted() const {
        std::ifstream mounts("/proc/self/mounts");
        for (std::string line; std::getline(mounts, line);) {
            if (line.find(" " + directory.path().string() + " ") != std::string::npos) {
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

TEST_F(Mounting_test, A_termination_signal_unmounts_and_ends_with_status_0) {
    sut->process().signal(SIGTERM);
    EXPECT_EQ(sut->process().wait(10s), 0);
    EXPECT_FALSE(is_mounted());
}

TEST_F(Mounting_test, Programs_that_wait_are_let_go_when_the_hypervisor_ends) {
    Opened const device(path("input/event0"), O_RDONLY | O_NONBLOCK);
    Watched const watched(device);
    EXPECT_EQ(watched.wait(0), 0U);
    sut->process().close_input();
    EXPECT_EQ(sut->process().wait(10s), 0);
    EXPECT_NE(watched.wait(k_patience_ms) & EPOLLERR, 0U);
}

TEST_F(Mounting_test, A_malformed_command_gets_an_error_and_the_hypervisor_goes_on) {
    sut->send_line("{\"do\":");
    auto const answer = sut->log().await([](auto const& line) { return line.contains("answer"); }, 10s);
    ASSERT_TRUE(answer);
    EXPECT_EQ((*answer)["ok"], false);
    EXPECT_EQ(sut->command({{"do", "list"}})["ok"], true);
}

TEST_F(Mounting_test, A_directory_that_is_not_there_is_an_error_with_status_1) {
    Child_process process({BENCH_HYPERVISOR, path("input/nowhere")}, {});
    EXPECT_EQ(process.wait(10s), 1);
}

TEST_F(Mounting_test, Wrong_arguments_are_an_error_with_status_2) {
    Child_process process({BENCH_HYPERVISOR}, {});
    EXPECT_EQ(process.wait(10s), 2);
}

TEST_F(Mounting_test, As_many_devices_as_asked_for_are_there_at_the_start) {
    Scratch_directory const other;
    Player const player({BENCH_HYPERVISOR, "--devices", "7", other.path()});
    EXPECT_TRUE(std::filesystem::exists(other.path() / "input/event6"));
    EXPECT_FALSE(std::filesystem::exists(other.path() / "input/event7"));
}

TEST_F(Mounting_test, A_user_namespace_can_mount_its_own) {
    Scratch_directory const other;
    Child_process probe({"unshare", "--user", "--map-root-user", "--mount", "true"}, {});
    if (probe.wait(10s) != 0) {
        GTEST_SKIP() << "this machine allows no user namespaces (sysctl kernel.unprivileged_userns_clone or "
                        "user.max_user_namespaces)";
    }
    Player player({"unshare", "--user", "--map-root-user", "--mount", BENCH_HYPERVISOR, other.path()});
    EXPECT_EQ(player.command({{"do", "list"}})["ok"], true);
    EXPECT_FALSE(std::filesystem::exists(other.path() / "input"));  // the mount is in that namespace only
}

}  // namespace
}  // namespace bench::hypervisor
