#include "utilities/socket.h"

#include "expect_system_error.h"
#include "support/log_capture.h"

#include <cerrno>
#include <cstring>
#include <string>
#include <type_traits>
#include <utility>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

namespace utilities {
namespace {

using ara::log::LogLevel;
using test_support::Log_capture;
using test_support::logged_in;
using testing::ElementsAre;
using testing::IsEmpty;

bool is_open(int descriptor) {
    return ::fcntl(descriptor, F_GETFD) != -1;
}

int some_descriptor() {
    return ::open("/dev/null", O_RDONLY | O_CLOEXEC);
}

TEST(Socket, Is_empty_unless_told_otherwise) {
    Log_capture log;
    { EXPECT_EQ(Socket().get_fd(), -1); }
    EXPECT_THAT(log.messages(), IsEmpty());
}

TEST(Socket, Closes_the_descriptor_that_it_took) {
    int const descriptor = some_descriptor();
    {
        Socket const sut(descriptor);
        EXPECT_EQ(sut.get_fd(), descriptor);
        EXPECT_TRUE(is_open(descriptor));
    }
    EXPECT_FALSE(is_open(descriptor));
}

TEST(Socket, Refuses_to_own_minus_one) {
    expect_system_error(EMFILE, "Socket::Socket(int32_t)", [] {
        errno = EMFILE;
        Socket const sut(-1);
    });
}

TEST(Socket, Is_made_with_domain_type_and_protocol) {
    Socket const sut(AF_UNIX, SOCK_DGRAM, 0);

    int type = 0;
    socklen_t length = sizeof type;
    ASSERT_EQ(::getsockopt(sut.get_fd(), SOL_SOCKET, SO_TYPE, &type, &length), 0);
    EXPECT_EQ(type, SOCK_DGRAM);
}

TEST(Socket, That_the_system_refuses_throws) {
    expect_system_error(EAFNOSUPPORT, "Socket::Socket(int32_t)", [] { Socket const sut(AF_MAX + 1, SOCK_STREAM, 0); });
}

static_assert(!std::is_copy_constructible_v<Socket> && !std::is_copy_assignable_v<Socket>, "one owner");

TEST(Socket, Moved_from_is_empty) {
    int const descriptor = some_descriptor();
    Socket first(descriptor);

    Socket const sut(std::move(first));

    EXPECT_EQ(sut.get_fd(), descriptor);
    EXPECT_EQ(first.get_fd(), -1);  // NOLINT(bugprone-use-after-move): what is left behind is promised
    EXPECT_TRUE(is_open(descriptor));
}

TEST(Socket, Move_assignment_swaps) {
    int const one = some_descriptor();
    int const two = some_descriptor();
    Socket first(one);
    Socket second(two);

    first = std::move(second);

    EXPECT_EQ(first.get_fd(), two);
    EXPECT_EQ(second.get_fd(), one);  // NOLINT(bugprone-use-after-move): what is left behind is promised
    EXPECT_TRUE(is_open(one));
    EXPECT_TRUE(is_open(two));
}

TEST(Socket, A_failed_close_is_logged_and_not_thrown) {
    Log_capture log;
    { Socket const good(some_descriptor()); }
    EXPECT_THAT(log.messages(), testing::IsEmpty());
    {
        Socket const sut(some_descriptor());
        ::close(sut.get_fd());
    }
    EXPECT_THAT(log.messages(), ElementsAre(logged_in("SNCC", LogLevel::kError,
                                                      "close(m_socket) failed with error: ", std::strerror(EBADF))));
}

TEST(Socket, That_can_not_listen_throws) {
    expect_system_error(EOPNOTSUPP, "Socket::listen(int32_t)", [] { Socket(AF_UNIX, SOCK_DGRAM, 0).listen(1); });
}

/// Calls that take and give a byte at a time, each of them after a signal has interrupted it.
class Interrupted_calls final : public Socket_calls {
 public:
    ssize_t send(int /*socket*/, void const* bytes, std::size_t /*length*/, int /*flags*/) override {
        if (is_interrupted()) {
            return -1;
        }
        sent += *static_cast<char const*>(bytes);
        return 1;
    }
    ssize_t recv(int /*socket*/, void* bytes, std::size_t /*length*/, int /*flags*/) override {
        if (is_interrupted()) {
            return -1;
        }
        *static_cast<char*>(bytes) = 'x';
        return 1;
    }
    int close(int /*socket*/) override { return 0; }
    int poll(pollfd* /*entries*/, std::size_t /*count*/, timespec const* /*timeout*/) override { return 0; }

    std::string sent;

 private:
    bool is_interrupted() {
        errno = EINTR;
        return std::exchange(is_next_, !is_next_);
    }

    bool is_next_{true};
};

TEST(Socket, Sends_and_receives_all_however_often_signals_interrupt_it) {
    Interrupted_calls calls;
    Socket const sut(7, calls);

    sut.sendl("abcd", 4, 0);
    char received[4];
    sut.recvl(received, sizeof received, 0);

    EXPECT_EQ(calls.sent, "abcd");
    EXPECT_EQ(std::string(received, 4), "xxxx");
}

TEST(Socket_pair, Is_two_stream_sockets_that_are_connected) {
    auto const [left, right] = socket_pair();

    left.sendl("hello", 5, 0);
    char received[5];
    right.recvl(received, sizeof received, 0);

    EXPECT_EQ(std::string(received, 5), "hello");
    int type = 0;
    socklen_t length = sizeof type;
    ASSERT_EQ(::getsockopt(left.get_fd(), SOL_SOCKET, SO_TYPE, &type, &length), 0);
    EXPECT_EQ(type, SOCK_STREAM);
}

TEST(Socket_pair, That_the_system_refuses_throws) {
    rlimit before{};
    ::getrlimit(RLIMIT_NOFILE, &before);
    rlimit const none{0, before.rlim_max};
    ::setrlimit(RLIMIT_NOFILE, &none);
    expect_system_error(EMFILE, "socketpair(AF_UNIX, SOCK_STREAM, 0, sockets)", [] { socket_pair(); });
    ::setrlimit(RLIMIT_NOFILE, &before);
}

TEST(Create_unix_address, Holds_the_path_in_a_zeroed_address) {
    auto const address = create_unix_address("/run/x");

    EXPECT_EQ(address.sun_family, AF_UNIX);
    EXPECT_STREQ(address.sun_path, "/run/x");
    for (std::size_t i = 6; i < sizeof address.sun_path; ++i) {
        ASSERT_EQ(address.sun_path[i], 0);
    }
}

TEST(Create_unix_address, Takes_108_characters_without_terminator) {
    std::string const path(108, 'p');
    EXPECT_EQ(std::string(create_unix_address(path).sun_path, 108), path);
}

TEST(Create_unix_address, Refuses_109_characters) {
    std::string const path(109, 'p');
    try {
        create_unix_address(path);
        FAIL();
    } catch (std::runtime_error const& error) {
        EXPECT_EQ(error.what(), "socket address is too big for unix domain socket path (max size 108): " + path);
    }
}

}  // namespace
}  // namespace utilities
