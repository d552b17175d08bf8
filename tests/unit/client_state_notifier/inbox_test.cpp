#include "client_state_notifier/inbox.h"

#include "utilities/messages.h"

#include <stdexcept>

#include <gmock/gmock.h>
#include <poll.h>

namespace client_state_notifier {
namespace {

using namespace std::chrono_literals;  // NOLINT(google-build-using-namespace): of its literals
using utilities::Type_length_value;

class Inbox_of_a_connection : public testing::Test {
 protected:
    void arrive(unsigned count = 1) const {
        for (unsigned i = 0; i < count; ++i) {
            utilities::send_type_length_values(pair.second, {Type_length_value("kOn")});
        }
    }

    /// How many messages have arrived, taken at this moment.
    unsigned taken(Inbox::Clock::time_point now) {
        unsigned count = 0;
        while (pair.first.poll(POLLIN, 0).second) {
            sut.receive(pair.first);
            while (sut.take(now)) {
                ++count;
            }
        }
        return count;
    }

    void expect_flood(Inbox::Clock::time_point now) {
        arrive();
        sut.receive(pair.first);
        try {
            sut.take(now);
            ADD_FAILURE() << "nothing was thrown";
        } catch (std::runtime_error const& error) {
            EXPECT_STREQ(error.what(), "too many messages");
        }
    }

    std::pair<utilities::Socket, utilities::Socket> pair{utilities::socket_pair()};
    Inbox::Clock::time_point const start{Inbox::Clock::now()};
    Inbox sut;
};

TEST_F(Inbox_of_a_connection, Waits_for_nothing) {
    EXPECT_NO_THROW(sut.receive(pair.first));
    EXPECT_EQ(sut.take(Inbox::Clock::now()), std::nullopt);
}

TEST_F(Inbox_of_a_connection, Hands_out_what_has_arrived) {
    arrive();
    sut.receive(pair.first);
    EXPECT_EQ(sut.take(Inbox::Clock::now()), utilities::Type_length_values{Type_length_value("kOn")});
    EXPECT_EQ(sut.take(Inbox::Clock::now()), std::nullopt);
}

TEST_F(Inbox_of_a_connection, Takes_so_many_messages_in_a_second_and_no_more) {
    arrive(Inbox::k_most_unasked_a_second);
    EXPECT_EQ(taken(start), Inbox::k_most_unasked_a_second);
    expect_flood(start + 1s);
}

TEST_F(Inbox_of_a_connection, Takes_as_many_again_when_the_second_is_over) {
    arrive(Inbox::k_most_unasked_a_second);
    EXPECT_EQ(taken(start), Inbox::k_most_unasked_a_second);
    arrive(Inbox::k_most_unasked_a_second);
    EXPECT_EQ(taken(start + 1001ms), Inbox::k_most_unasked_a_second);
    expect_flood(start + 1001ms + 1s);
}

TEST_F(Inbox_of_a_connection, Does_not_count_looks_that_find_nothing) {
    for (unsigned i = 0; i <= Inbox::k_most_unasked_a_second; ++i) {
        EXPECT_EQ(sut.take(start), std::nullopt);
    }
    arrive(Inbox::k_most_unasked_a_second);
    EXPECT_EQ(taken(start), Inbox::k_most_unasked_a_second);
}

TEST_F(Inbox_of_a_connection, Counts_none_that_it_expects_but_those_beyond) {
    sut.expect_one();
    sut.expect_one();
    arrive(Inbox::k_most_unasked_a_second + 2);
    EXPECT_EQ(taken(start), Inbox::k_most_unasked_a_second + 2);
    expect_flood(start);
}

TEST_F(Inbox_of_a_connection, Tells_of_a_peer_that_has_closed_when_all_before_that_was_received) {
    arrive();
    { utilities::Socket const gone(std::move(pair.second)); }
    sut.receive(pair.first);
    EXPECT_NE(sut.take(Inbox::Clock::now()), std::nullopt);
    EXPECT_THROW(sut.receive(pair.first), utilities::ExceptionSocketClosed);
}

}  // namespace
}  // namespace client_state_notifier
