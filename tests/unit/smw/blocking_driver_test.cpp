// A driver that lets the writer of a word wait, and a signal meanwhile. A FIFO that is full is such a driver: it leaves
// to the kernel whether a write that a signal interrupts is begun anew, and the kernel asks the handler's flags.

#include "statemanager/smw/control_file_buffer.h"
#include "support/temporary_directory.h"

#include <array>
#include <atomic>
#include <csignal>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <pthread.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace ximo::ap::statemanager::smw {
namespace {

class Blocking_driver : public testing::Test {
 protected:
    Blocking_driver() {
        ::mkfifo(path_.c_str(), 0600);
        driver_ = ::open(path_.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
        std::array<char, 4096> const filling{};
        while (::write(driver_, filling.data(), filling.size()) > 0) {
        }
    }
    ~Blocking_driver() override {
        ::sigaction(SIGUSR1, &before_, nullptr);
        ::close(driver_);
    }

    void handle_signals(int flags) {
        struct sigaction action {};
        action.sa_handler = [](int) {};
        action.sa_flags = flags;
        ::sigaction(SIGUSR1, &action, &before_);
    }

    /// Writes a word on a thread of its own, and comes back when that sleeps in the driver.
    std::thread write_word() {
        std::thread thread([this] {
            Control_file_buffer sut(path_);
            writer_ = ::syscall(SYS_gettid);
            taken_ = sut.sputn("running", 7);
            done_ = true;
        });
        while (writer_ == 0 || !status_says("State:\tS")) {
            std::this_thread::yield();
        }
        return thread;
    }

    /// Sends a signal to the writer, and comes back when the kernel has delivered it.
    void interrupt(std::thread& writer) {
        ::pthread_kill(writer.native_handle(), SIGUSR1);
        while (!done_ && !status_says("SigPnd:\t0000000000000000")) {
            std::this_thread::yield();
        }
    }

    void take_everything() {
        std::array<char, 4096> room{};
        while (::read(driver_, room.data(), room.size()) > 0) {
        }
    }

    std::atomic<std::streamsize> taken_{-1};
    std::atomic<bool> done_{false};

 private:
    bool status_says(std::string const& line) const {
        std::ifstream status("/proc/self/task/" + std::to_string(writer_) + "/status");
        std::string const text(std::istreambuf_iterator<char>(status), {});
        return text.find(line) != std::string::npos;
    }

    test_support::Temporary_directory directory_;
    std::string const path_{directory_.file("driver")};
    std::atomic<long> writer_{0};
    int driver_{-1};
    struct sigaction before_ {};
};

TEST_F(Blocking_driver, Goes_on_with_a_word_that_it_leaves_to_the_kernel_after_a_signal) {
    handle_signals(SA_RESTART);
    auto writer = write_word();

    interrupt(writer);
    EXPECT_FALSE(done_);
    take_everything();
    writer.join();

    EXPECT_EQ(taken_, 7);
}

TEST_F(Blocking_driver, Drops_a_word_that_it_ends_for_a_signal) {
    handle_signals(0);
    auto writer = write_word();

    ::pthread_kill(writer.native_handle(), SIGUSR1);
    writer.join();

    EXPECT_EQ(taken_, 0);
}

}  // namespace
}  // namespace ximo::ap::statemanager::smw
