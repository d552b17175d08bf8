#include "utilities/poll.h"

#include "expect_system_error.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <thread>

#include <pthread.h>
#include <sys/resource.h>

namespace utilities {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using testing::IsEmpty;
using testing::SizeIs;

class Polling : public testing::Test {
 protected:
    std::pair<Socket, Socket> pair = socket_pair();
    Socket& sut = pair.first;
    Socket& peer = pair.second;
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

TEST_F(Polling, Without_limit_it_waits_for_what_comes_late_and_through_signals) {
    struct sigaction interrupting {};
    interrupting.sa_handler = [](int) {};  // without SA_RESTART
    struct sigaction before {};
    ::sigaction(SIGUSR1, &interrupting, &before);
    std::atomic<bool> ready{false};

    std::thread waiter([&] {
        auto set = create_pollfd(POLLIN, sut);
        ready = poll(set, -1);
    });
    for (int i = 0; i < 100; ++i) {
        ::pthread_kill(waiter.native_handle(), SIGUSR1);
        std::this_thread::yield();
    }
    peer.sendl("x", 1, 0);
    waiter.join();

    EXPECT_TRUE(ready);
    ::sigaction(SIGUSR1, &before, nullptr);
}

TEST_F(Polling, More_descriptors_than_a_process_may_have_are_an_error) {
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    std::vector<pollfd> set(limit.rlim_cur + 1, create_pollfd_helper(POLLIN, sut));
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
