#include "expect_system_error.h"
#include "utilities/socket.h"

#include <cerrno>
#include <thread>
#include <vector>

#include <sys/socket.h>

namespace utilities {
namespace {

TEST(Sending, All_bytes_are_sent_though_each_call_takes_only_a_part) {
    auto const [sut, peer] = socket_pair();
    std::vector<char> sent(5'000'000, 's');
    sent.back() = 'e';

    std::thread sender([&sut = sut, &sent] { sut.sendl(sent.data(), sent.size(), 0); });
    std::vector<char> received(sent.size());
    peer.recvl(received.data(), received.size(), 0);
    sender.join();

    EXPECT_EQ(received, sent);
}

TEST(Sending, Nothing_needs_no_socket) {
    EXPECT_NO_THROW(Socket().sendl(nullptr, 0, 0));
}

TEST(Sending, To_a_peer_that_has_gone_is_an_error_and_no_signal) {
    auto pair = socket_pair();
    { Socket const gone(std::move(pair.second)); }

    expect_system_error(EPIPE, "Socket::sendl(...)", [&] { pair.first.sendl("x", 1, 0); });
}

TEST(Sending, What_does_not_fit_is_an_error_when_told_not_to_wait) {
    auto const [sut, peer] = socket_pair();
    std::vector<char> const much(5'000'000);

    expect_system_error(EAGAIN, "Socket::sendl(...)",
                        [&sut = sut, &much] { sut.sendl(much.data(), much.size(), MSG_DONTWAIT); });
}

}  // namespace
}  // namespace utilities
