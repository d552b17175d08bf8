#ifndef TESTS_COMPONENT_BENCH_HYPERVISOR_MOUNTED_FIXTURE_H
#define TESTS_COMPONENT_BENCH_HYPERVISOR_MOUNTED_FIXTURE_H

#include "base/temporary_directory.h"
#include "bench/hypervisor/fuse_requirements.h"
#include "bench/process/player.h"

#include <array>
#include <cerrno>
#include <memory>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/epoll.h>
#include <unistd.h>

namespace bench::hypervisor {

/// An open file of the mounted tree, used by the system calls that a daemon uses.
class Opened {
 public:
    Opened(std::string const& path, int flags) : descriptor_(::open(path.c_str(), flags | O_CLOEXEC, 0600)) {
        error_ = descriptor_ < 0 ? errno : 0;
    }
    ~Opened() {
        if (descriptor_ >= 0) {
            ::close(descriptor_);
        }
    }
    Opened(Opened const&) = delete;
    Opened& operator=(Opened const&) = delete;

    operator int() const { return descriptor_; }
    int error() const { return error_; }

 private:
    int descriptor_;
    int error_;
};

/// An epoll instance that watches one descriptor for input.
class Watched {
 public:
    explicit Watched(int descriptor) : epoll_(::epoll_create1(EPOLL_CLOEXEC)) {
        epoll_event event{};
        event.events = EPOLLIN;
        EXPECT_EQ(::epoll_ctl(epoll_, EPOLL_CTL_ADD, descriptor, &event), 0);
    }
    ~Watched() { ::close(epoll_); }
    Watched(Watched const&) = delete;
    Watched& operator=(Watched const&) = delete;

    /// The events of the descriptor; 0 after the time.
    unsigned wait(int limit_ms) const {
        epoll_event event{};
        return ::epoll_wait(epoll_, &event, 1, limit_ms) == 1 ? event.events : 0;
    }

 private:
    int epoll_;
};

/// The real program on a real FUSE mount with the keyboard "event0".
class Mounted_fixture : public testing::Test {
 protected:
    static constexpr int k_patience_ms = 10'000;

    void SetUp() override {
        if (std::string const missing = missing_for_fuse(); !missing.empty()) {
            GTEST_SKIP() << missing;
        }
        sut = std::make_unique<Player>(std::vector<std::string>{BENCH_HYPERVISOR, directory.path()});
    }

    std::string path(std::string const& below) const { return directory.path() / below; }

    base::Temporary_directory directory;
    std::unique_ptr<Player> sut;
};

}  // namespace bench::hypervisor

#endif
