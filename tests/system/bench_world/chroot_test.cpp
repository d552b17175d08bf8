#include "bench/vehicle/private_mounts.h"
#include "bench/vehicle/world.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace bench::vehicle {
namespace {

namespace fs = std::filesystem;

constexpr int k_not_possible = 99;

std::string mounts() {
    std::ifstream file("/proc/self/mountinfo");
    return {std::istreambuf_iterator<char>(file), {}};
}

void require(bool done) {
    if (!done) {
        std::fprintf(stderr, "No chroot can be made here: %s\n", std::strerror(errno));
        ::_exit(k_not_possible);
    }
}

void bind(fs::path const& source, fs::path const& target) {
    fs::create_directories(target);
    require(::mount(source.c_str(), target.c_str(), nullptr, MS_BIND | MS_REC, nullptr) == 0);
}

// Everything of this machine under a directory that is no mount point itself, on a file system that passes its mounts
// on, as that of a machine whose first process is systemd does.
void enter_chroot() {
    require(::unshare(CLONE_NEWNS) == 0);
    make_mounts_private();
    require(::mount("tmpfs", "/mnt", "tmpfs", 0, nullptr) == 0);
    require(::mount("none", "/mnt", nullptr, MS_SHARED, nullptr) == 0);
    fs::path const root = "/mnt/chroot";
    for (auto const& entry : fs::directory_iterator("/")) {
        auto const inside = root / entry.path().filename();
        if (entry.is_symlink()) {
            fs::copy_symlink(entry.path(), inside);
        } else if (entry.is_directory() && entry.path() != "/mnt" && entry.path() != "/tmp") {
            bind(entry.path(), inside);
        }
    }
    fs::create_directories(root / "tmp");
    require(::chroot(root.c_str()) == 0 && ::chdir("/") == 0);
}

/// The result of what runs in a chroot, in a process and a mount namespace of its own.
int in_chroot(std::function<int()> const& inside) {
    pid_t const child = ::fork();
    if (child == 0) {
        enter_chroot();
        ::_exit(inside());
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

long threads() {
    return std::distance(fs::directory_iterator("/proc/self/task"), fs::directory_iterator());
}

class Chroot : public testing::Test {
 protected:
    void SetUp() override {
        if (::geteuid() != 0) {
            GTEST_SKIP() << "only root can make a chroot";
        }
        if (in_chroot([] { return ::mount("none", "/", nullptr, MS_PRIVATE, nullptr) == 0 ? 1 : errno; }) != EINVAL) {
            GTEST_SKIP() << "no chroot whose root is no mount point can be made here; the reason stands above";
        }
        if (in_chroot([] { return threads() == 1 ? 0 : 1; }) != 0) {
            GTEST_SKIP() << "only a process of one thread can leave a chroot, and ThreadSanitizer adds one";
        }
        if (run_inside("/", [] { return 0; }) != 0) {
            GTEST_SKIP() << "no world can be made here; its reason stands above";
        }
    }
};

TEST_F(Chroot, Is_a_place_for_a_world_like_any_other) {
    EXPECT_EQ(in_chroot([] { return run_inside("/", [] { return 42; }); }), 42);
}

TEST_F(Chroot, Is_left_as_it_was_by_a_world) {
    EXPECT_EQ(in_chroot([] {
                  auto const before = mounts();
                  int const status = run_inside("/", [] { return 0; });
                  return status == 0 && mounts() == before && fs::is_empty("/tmp") ? 0 : 1;
              }),
              0);
}

TEST_F(Chroot, Is_still_the_root_of_a_process_whose_mounts_became_private) {
    EXPECT_EQ(in_chroot([] {
                  std::ofstream("/tmp/mark") << "mark";
                  ::unshare(CLONE_NEWNS);
                  fs::current_path("/tmp");
                  make_mounts_private();
                  bool const is_mount_point = ::mount("none", "/", nullptr, MS_PRIVATE, nullptr) == 0;
                  return is_mount_point && fs::exists("/tmp/mark") && fs::current_path() == "/tmp" ? 0 : 1;
              }),
              0);
}

}  // namespace
}  // namespace bench::vehicle
