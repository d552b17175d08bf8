#include "bench/vehicle/world.h"

#include "bench/process/end_signals.h"

#include <array>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace bench::vehicle {
namespace {

namespace fs = std::filesystem;

std::string host_name() {
    std::array<char, 256> name{};
    ::gethostname(name.data(), name.size() - 1);
    return name.data();
}

ino_t world_of(char const* name) {
    struct stat information {};
    ::stat((std::string("/proc/self/ns/") + name).c_str(), &information);
    return information.st_ino;
}

int in_world(std::function<int()> const& inside) {
    return run_inside("/", inside);
}

class World : public testing::Test {
 protected:
    void SetUp() override {
        if (in_world([] { return 0; }) != 0) {
            GTEST_SKIP() << "no world can be made here; its reason stands above";
        }
    }
};

TEST_F(World, Tells_of_an_exception_inside_and_has_a_status_for_it) {
    EXPECT_EQ(in_world([]() -> int { throw std::runtime_error("broken inside, as this test wants it"); }), k_no_world);
}

TEST_F(World, Is_another_one_in_every_respect) {
    for (auto const* const name : {"mnt", "uts", "ipc", "net", "pid"}) {
        auto const outside = world_of(name);
        EXPECT_EQ(in_world([=] { return world_of(name) == outside ? 1 : 0; }), 0) << name;
        EXPECT_EQ(world_of(name), outside) << name << " of the caller";
    }
}

TEST_F(World, Keeps_its_host_name_to_itself) {
    auto const outside = host_name();
    EXPECT_EQ(in_world([] {
                  set_host_name("another-machine");
                  return host_name() == "another-machine" ? 0 : 1;
              }),
              0);
    EXPECT_EQ(host_name(), outside);
}

TEST_F(World, Keeps_its_files_to_itself) {
    for (auto const* const directory : {"/etc", "/etc/adaptive", "/dev", "/run", "/var", "/tmp", "/sys"}) {
        auto const file = fs::path(directory) / ("made-inside-" + std::to_string(::getpid()));
        EXPECT_EQ(in_world([&] {
                      std::ofstream(file) << "text";
                      return fs::file_size(file) == 4 ? 0 : 1;
                  }),
                  0)
            << directory;
        EXPECT_FALSE(fs::exists(file)) << file;
    }
}

TEST_F(World, Leaves_nothing_on_the_host) {
    auto const directory = fs::temp_directory_path() / ("world-" + std::to_string(::getpid()));
    fs::create_directory(directory);
    ::setenv("TMPDIR", directory.c_str(), 1);
    auto const status = in_world([] { return fs::temp_directory_path() == "/tmp" ? 0 : 1; });
    ::unsetenv("TMPDIR");
    EXPECT_EQ(status, 0) << "inside there is a place of its own for such files";
    EXPECT_TRUE(fs::is_empty(directory)) << "the place where the root directory was put together";
    fs::remove_all(directory);
}

TEST_F(World, Ends_with_everything_that_was_started_inside) {
    std::array<int, 2> pipe{};
    ASSERT_EQ(::pipe(pipe.data()), 0);
    EXPECT_EQ(in_world([] {
                  if (::fork() == 0) {
                      ::pause();
                  }
                  return 0;
              }),
              0);
    ::close(pipe[1]);
    char byte = 0;
    EXPECT_EQ(::read(pipe[0], &byte, 1), 0) << "a process inside that lives on holds the other end";
    ::close(pipe[0]);
}

/// A world in a process of its own, which says when it is there.
class Ended_world : public World {
 protected:
    /// It is there once `first` is done.
    void start(std::function<void()> const& first, std::function<int()> const& inside) {
        std::array<int, 2> pipe{};
        ASSERT_EQ(::pipe(pipe.data()), 0);
        outside = ::fork();
        if (outside == 0) {
            ::prctl(PR_SET_PDEATHSIG, SIGKILL);
            ::close(pipe[0]);
            ::_exit(in_world([&] {
                first();
                EXPECT_EQ(::write(pipe[1], "x", 1), 1);
                return inside();
            }));
        }
        ::close(pipe[1]);
        alive = pipe[0];
        char byte = 0;
        ASSERT_EQ(::read(alive, &byte, 1), 1);
    }
    void TearDown() override {
        if (outside > 0) {
            ::kill(outside, SIGKILL);
            ::close(alive);
        }
    }

    /// Negative when it did not end by itself in time.
    int status() {
        int status = 0;
        auto const deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (::waitpid(outside, &status, WNOHANG) == 0) {
            if (std::chrono::steady_clock::now() > deadline) {
                ::kill(outside, SIGKILL);
            }
            ::poll(nullptr, 0, 1);
        }
        outside = 0;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }
    bool is_everything_over() {
        char byte = 0;
        return ::read(alive, &byte, 1) == 0;
    }

    pid_t outside{0};
    int alive{-1};
};

TEST_F(Ended_world, Goes_with_all_that_it_has_started_by_a_signal_to_the_outermost_process) {
    for (int const number : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) {
        start([] {},
              [] {
                  ::fork();
                  return ::pause();
              });
        ::kill(outside, number);
        EXPECT_EQ(status(), 128 + number);
        EXPECT_TRUE(is_everything_over());
        ::close(alive);
    }
}

TEST_F(Ended_world, Ends_in_order_where_it_takes_note_of_the_signal) {
    start(note_end_signals, [] {
        while (noted_end_signal() == 0) {
            ::poll(nullptr, 0, 1);
        }
        return noted_end_signal() == SIGTERM ? 42 : 1;
    });
    ::kill(outside, SIGTERM);
    EXPECT_EQ(status(), 42);
    ::close(alive);
}

bool is_ignored(int number, std::string const& process) {
    std::ifstream file("/proc/" + process + "/status");
    for (std::string word; file >> word;) {
        if (word == "SigIgn:" && file >> word) {
            return (std::stoull(word, nullptr, 16) >> (number - 1) & 1) != 0;
        }
    }
    return false;
}

TEST_F(Ended_world, Leaves_alone_what_its_caller_ignores) {
    ::signal(SIGHUP, SIG_IGN);
    start(note_end_signals, [] {
        while (noted_end_signal() == 0) {
            ::poll(nullptr, 0, 1);
        }
        return is_ignored(SIGHUP, "self") ? 42 : 1;
    });
    ::signal(SIGHUP, SIG_DFL);
    EXPECT_TRUE(is_ignored(SIGHUP, std::to_string(outside)));
    ::kill(outside, SIGTERM);
    EXPECT_EQ(status(), 42);
    ::close(alive);
}

}  // namespace
}  // namespace bench::vehicle
