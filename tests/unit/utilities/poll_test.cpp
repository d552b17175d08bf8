#include "utilities/poll.h"

#include "expect_system_error.h"
#include "support/eventually.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

namespace utilities {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using test_support::eventually;
using testing::IsEmpty;
using testing::SizeIs;

class Polling : public testing::Test {
 protected:
    std::pair<Socket, Socket> pair{socket_pair()};
    Socket& sut{pair.first};
    Socket& peer{pair.second};
};

TEST_F(Polling, A_poll_set_has_the_sockets_in_their_order_and_no_returned_events) {
    auto const set = create_pollfd(POLLIN | POLLOUT, peer, sut);

    ASSERT_THAT(set, SizeIs(2));
    EXPECT_EQ(set[0].fd, peer.get_fd());
    EXPECT_EQ(set[1].fd, sut.get_fd());
    for (auto const& entry : set) {
        EXPECT_EQ(entry.events, POLLIN | POLLOUT);
        EXPECT_EQ(entry.revents, 0);
    }
    EXPECT_THAT(create_pollfd(POLLIN), IsEmpty());
}

TEST_F(Polling, One_entry_is_like_those_of_a_set) {
    auto const entry = create_pollfd_helper(POLLOUT, sut);
    EXPECT_EQ(entry.fd, sut.get_fd());
    EXPECT_EQ(entry.events, POLLOUT);
    EXPECT_EQ(entry.revents, 0);
}

TEST_F(Polling, Tells_which_descriptor_is_ready) {
    peer.sendl("x", 1, 0);
    auto set = create_pollfd(POLLIN, peer, sut);

    EXPECT_TRUE(poll(set, -1));

    EXPECT_EQ(set[0].revents, 0);
    EXPECT_EQ(set[1].revents, POLLIN);
}

TEST_F(Polling, Nothing_ready_at_the_end_of_the_time_is_false) {
    auto set = create_pollfd(POLLIN, sut);
    auto const start = steady_clock::now();
    EXPECT_FALSE(poll(set, 1));
    EXPECT_GE(steady_clock::now() - start, milliseconds(1));
    EXPECT_FALSE(poll(set, 0));
}

TEST_F(Polling, Time_is_in_milliseconds_also_from_a_second_on) {
    auto set = create_pollfd(POLLIN, sut);
    auto const start = steady_clock::now();
    EXPECT_FALSE(poll(set, 1000));
    EXPECT_GE(steady_clock::now() - start, milliseconds(1000));
    EXPECT_LT(steady_clock::now() - start, milliseconds(9000));
}

std::atomic<int> interruptions{0};

/// Whether a thread of this process sleeps.
bool sleeps(pid_t thread) {
    std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/stat");
    std::string const text(std::istreambuf_iterator<char>(file), {});
    auto const name_ends = text.rfind(')');
    return name_ends != std::string::npos && text.compare(name_ends, 3, ") S") == 0;
}

class Interrupted_polling : public Polling, public testing::WithParamInterface<long> {};

TEST_P(Interrupted_polling, Waits_on_for_what_comes_late) {
    struct sigaction interrupting {};
    interrupting.sa_handler = [](int) { ++interruptions; };  // without SA_RESTART
    struct sigaction before {};
    ::sigaction(SIGUSR1, &interrupting, &before);
    interruptions = 0;
    std::atomic<pid_t> thread{0};
    std::atomic<bool> ended{false};
    std::string outcome;

    std::thread waiter([&] {
        auto set = create_pollfd(POLLIN, sut);
        thread = ::gettid();
        try {
            outcome = poll(set, GetParam()) ? "ready" : "time over";
        } catch (std::system_error const& error) {
            outcome = error.what();
        }
        ended = true;
    });
    EXPECT_TRUE(eventually([&] { return thread != 0; }));
    for (int sent = 1; sent <= 10 && !ended; ++sent) {
        EXPECT_TRUE(eventually([&] { return ended || sleeps(thread); }));
        ::pthread_kill(waiter.native_handle(), SIGUSR1);
        EXPECT_TRUE(eventually([&] { return interruptions == sent; }));
    }
    EXPECT_FALSE(ended);
    peer.sendl("x", 1, 0);
    waiter.join();

    EXPECT_EQ(outcome, "ready");
    ::sigaction(SIGUSR1, &before, nullptr);
}

INSTANTIATE_TEST_SUITE_P(Times, Interrupted_polling, testing::Values(-1, 3'600'000));

/// At most so many descriptors for this process, as long as it lives.
class Descriptor_limit {
 public:
    explicit Descriptor_limit(rlim_t most) {
        ::getrlimit(RLIMIT_NOFILE, &before_);
        rlimit const lower{most, before_.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &lower);
    }
    ~Descriptor_limit() { ::setrlimit(RLIMIT_NOFILE, &before_); }
    Descriptor_limit(Descriptor_limit const&) = delete;
    Descriptor_limit& operator=(Descriptor_limit const&) = delete;

 private:
    rlimit before_{};
};

TEST_F(Polling, More_descriptors_than_a_process_may_have_are_an_error) {
    constexpr rlim_t most = 64;
    Descriptor_limit const limit(most);
    std::vector<pollfd> set(most, create_pollfd_helper(POLLIN, sut));
    EXPECT_FALSE(poll(set, 0));
    set.push_back(set.front());
    expect_system_error(EINVAL, "Socket::poll()", [&] { poll(set, 0); });
}

TEST_F(Polling, One_socket_tells_its_events_and_whether_there_are_any) {
    EXPECT_EQ(sut.poll(POLLIN, 0), std::make_pair(std::int16_t{0}, false));
    EXPECT_EQ(sut.poll(POLLOUT, 0), std::make_pair(std::int16_t{POLLOUT}, true));
    peer.sendl("x", 1, 0);
    EXPECT_EQ(sut.poll(POLLIN | POLLOUT, -1), std::make_pair(std::int16_t{POLLIN | POLLOUT}, true));
}

}  // namespace
}  // namespace utilities
