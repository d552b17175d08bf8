#include "utilities/messages.h"

#include "utilities/serialization.h"

#include <stdexcept>
#include <thread>

#include <gmock/gmock.h>
#include <sys/socket.h>

namespace utilities {
namespace {

using testing::IsEmpty;

class Messages : public testing::Test {
 protected:
    std::pair<Socket, Socket> pair{socket_pair()};
    Socket& sut{pair.first};
    Socket& peer{pair.second};

    void peer_sends(Bytes const& bytes) const { peer.sendl(bytes.data(), bytes.size(), 0); }
    void peer_closes() { Socket const gone(std::move(peer)); }
};

TEST_F(Messages, A_list_is_sent_as_its_bytes_and_no_more) {
    Type_length_values const list{Type_length_value(7U), Type_length_value("kPrepSD")};

    send_type_length_values(sut, list);

    Bytes received(100);
    received.resize(peer.recv(received.data(), received.size(), 0));
    EXPECT_EQ(received, serialize(list));
}

TEST_F(Messages, What_was_sent_is_received) {
    Type_length_values const list{Type_length_value(7U), Type_length_value("kPrepSD")};
    send_type_length_values(peer, list);
    send_type_length_values(peer, {});

    EXPECT_EQ(receive_type_length_values(sut), list);
    EXPECT_THAT(receive_type_length_values(sut), IsEmpty());
}

TEST_F(Messages, A_long_list_comes_through) {
    Type_length_values const list{Type_length_value(std::string(1'000'000, 'x')), Type_length_value(1U)};
    std::thread sender([&] { send_type_length_values(peer, list); });
    auto const received = receive_type_length_values(sut);
    sender.join();
    EXPECT_EQ(received, list);
}

TEST_F(Messages, The_outer_type_is_not_looked_at) {
    auto bytes = serialize(Type_length_values{Type_length_value("a")});
    bytes[0] = 200;
    peer_sends(bytes);
    EXPECT_EQ(receive_type_length_values(sut), Type_length_values{Type_length_value("a")});
}

TEST_F(Messages, A_peer_that_closes_anywhere_in_a_message_is_told) {
    auto const whole = serialize(Type_length_values{Type_length_value("abc")});
    for (std::size_t length = 0; length < whole.size(); ++length) {
        pair = socket_pair();
        peer_sends(Bytes(whole.begin(), whole.begin() + static_cast<long>(length)));
        peer_closes();
        EXPECT_THROW(receive_type_length_values(sut), ExceptionSocketClosed) << length;
    }
}

TEST_F(Messages, An_element_longer_than_its_frame_is_refused) {
    auto bytes = serialize(Type_length_values{Type_length_value("abc")});
    bytes[16] = 4;
    peer_sends(bytes);
    try {
        receive_type_length_values(sut);
        FAIL();
    } catch (std::out_of_range const& error) {
        EXPECT_STREQ(error.what(), "reached end of data while parsing");
    }
}

TEST_F(Messages, An_announced_length_is_not_allocated_before_the_bytes_are_there) {
    Bytes bytes(12, 0xFF);
    peer_sends(bytes);
    peer_closes();
    EXPECT_THROW(receive_type_length_values(sut), ExceptionSocketClosed);
}

}  // namespace
}  // namespace utilities
