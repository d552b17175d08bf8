#include "expect_system_error.h"
#include "utilities/socket.h"

#include <array>
#include <cerrno>
#include <thread>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/time.h>

namespace utilities {
namespace {

template <class Exception, class Call>
void expect_thrown(char const* text, Call call) {
    try {
        call();
        ADD_FAILURE() << "nothing was thrown";
    } catch (Exception const& error) {
        EXPECT_STREQ(error.what(), text);
    }
}

class Receiving : public testing::Test {
 protected:
    std::pair<Socket, Socket> pair{socket_pair()};
    Socket& sut{pair.first};
    Socket& peer{pair.second};
    std::array<char, 16> buffer{};

    void close_peer() { Socket const gone(std::move(peer)); }
};

TEST_F(Receiving, Gives_what_is_there) {
    peer.sendl("abc", 3, 0);
    EXPECT_EQ(sut.recv(buffer.data(), buffer.size(), 0), 3U);
    EXPECT_EQ(std::string(buffer.data()), "abc");
}

TEST_F(Receiving, Passes_the_flags_on) {
    peer.sendl("abc", 3, 0);
    EXPECT_EQ(sut.recv(buffer.data(), buffer.size(), MSG_PEEK), 3U);
    EXPECT_EQ(sut.recv(buffer.data(), buffer.size(), MSG_DONTWAIT), 3U);
}

TEST_F(Receiving, A_closed_peer_is_told_by_its_own_exception) {
    close_peer();
    expect_thrown<ExceptionSocketClosed>("Socket::recv called with closed socket",
                                         [&] { sut.recv(buffer.data(), 1, 0); });
}

TEST_F(Receiving, A_time_out_is_told_by_its_own_exception) {
    timeval const soon{0, 1000};
    ::setsockopt(sut.get_fd(), SOL_SOCKET, SO_RCVTIMEO, &soon, sizeof soon);
    expect_thrown<ExceptionSocketTimeout>("Socket::recv timeout, retry", [&] { sut.recv(buffer.data(), 1, 0); });
}

TEST_F(Receiving, A_socket_that_does_not_block_times_out_at_once) {
    ::fcntl(sut.get_fd(), F_SETFL, O_NONBLOCK);
    expect_thrown<ExceptionSocketTimeout>("Socket::recv timeout, retry", [&] { sut.recv(buffer.data(), 1, 0); });
}

TEST_F(Receiving, Both_exceptions_are_runtime_errors) {
    close_peer();
    EXPECT_THROW(sut.recv(buffer.data(), 1, 0), std::runtime_error);
    EXPECT_TRUE((std::is_base_of_v<std::runtime_error, ExceptionSocketTimeout>));
}

TEST_F(Receiving, Any_other_failure_is_a_system_error) {
    expect_system_error(EBADF, "Socket::recv(...)", [&] { Socket().recv(buffer.data(), 1, 0); });
}

TEST_F(Receiving, All_of_it_waits_for_the_last_byte) {
    std::thread sender([this] {
        peer.sendl("ab", 2, 0);
        peer.sendl("cd", 2, 0);
    });
    sut.recvl(buffer.data(), 4, 0);
    sender.join();
    EXPECT_EQ(std::string(buffer.data()), "abcd");
}

TEST_F(Receiving, All_of_nothing_makes_no_call) {
    EXPECT_NO_THROW(Socket().recvl(nullptr, 0, 0));
}

TEST_F(Receiving, A_peer_that_closes_in_the_middle_is_told) {
    peer.sendl("ab", 2, 0);
    close_peer();
    EXPECT_THROW(sut.recvl(buffer.data(), 4, 0), ExceptionSocketClosed);
}

}  // namespace
}  // namespace utilities
