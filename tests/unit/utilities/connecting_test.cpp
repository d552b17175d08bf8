#include "expect_system_error.h"
#include "support/temporary_directory.h"
#include "utilities/socket.h"

#include <cerrno>
#include <chrono>
#include <fstream>
#include <future>
#include <string>
#include <thread>

#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace utilities {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

class Connecting : public testing::Test {
 protected:
    test_support::Temporary_directory directory;
    std::string path{directory.file("socket")};
    sockaddr_un address{create_unix_address(path)};
    std::pair<Socket, Socket> abort{socket_pair()};
    Socket sut{AF_UNIX, SOCK_STREAM, 0};

    Socket bound() const {
        Socket server(AF_UNIX, SOCK_STREAM, 0);
        EXPECT_EQ(::bind(server.get_fd(), reinterpret_cast<sockaddr const*>(&address), sizeof address), 0);
        return server;
    }
};

TEST_F(Connecting, To_a_server_succeeds) {
    auto const server = bound();
    server.listen(1);

    EXPECT_TRUE(sut.try_connect(address, abort.first));

    Socket const accepted(::accept(server.get_fd(), nullptr, nullptr));
    sut.sendl("x", 1, 0);
    char received = 0;
    accepted.recvl(&received, 1, 0);
    EXPECT_EQ(received, 'x');
}

TEST_F(Connecting, Is_tried_again_until_there_is_a_server) {
    std::thread waiting([this] { EXPECT_TRUE(sut.try_connect(address, abort.first)); });
    auto const server = bound();  // no such file before this, refused before the next
    server.listen(1);
    waiting.join();
}

TEST_F(Connecting, Is_given_up_when_told_to_though_there_is_no_file) {
    abort.second.sendl("x", 1, 0);
    EXPECT_FALSE(sut.try_connect(address, abort.first));
}

TEST_F(Connecting, Is_given_up_when_told_to_though_the_server_refuses) {
    auto const server = bound();
    abort.second.sendl("x", 1, 0);
    EXPECT_FALSE(sut.try_connect(address, abort.first));
}

/// Waits until the thread stands in a ppoll call; false where the system does not tell, or it never does.
bool wait_for_poll_of(pid_t thread) {
    auto const end = steady_clock::now() + std::chrono::seconds(5);
    auto const in_poll = std::to_string(SYS_ppoll) + " ";
    while (steady_clock::now() < end) {
        std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/syscall");
        std::string line;
        if (std::getline(file, line) && line.compare(0, in_poll.size(), in_poll) == 0) {
            return true;
        }
        std::this_thread::yield();
    }
    return false;
}

TEST_F(Connecting, Waits_100_ms_before_the_next_try) {
    std::promise<pid_t> started;
    auto const start = steady_clock::now();
    std::thread waiting([&] {
        started.set_value(static_cast<pid_t>(::syscall(SYS_gettid)));
        EXPECT_TRUE(sut.try_connect(address, abort.first));
    });
    bool const first_try_is_over = wait_for_poll_of(started.get_future().get());
    auto const server = bound();
    server.listen(1);
    waiting.join();
    if (!first_try_is_over) {
        GTEST_SKIP() << "this system does not tell which call a thread is in";
    }
    EXPECT_GE(steady_clock::now() - start, milliseconds(100));
    EXPECT_LT(steady_clock::now() - start, milliseconds(5000));
}
static_assert(Socket::k_connect_retry == milliseconds(100));

TEST_F(Connecting, Any_other_failure_is_a_system_error) {
    Socket const datagram(AF_UNIX, SOCK_DGRAM, 0);
    auto const server = bound();
    expect_system_error(EPROTOTYPE, "Socket::try_connect(...)",
                        [&] { static_cast<void>(datagram.try_connect(address, abort.first)); });
}

}  // namespace
}  // namespace utilities
