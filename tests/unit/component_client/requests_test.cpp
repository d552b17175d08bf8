#include "client_test.h"
#include "utilities/type_length_value.h"

namespace component_client {
namespace {

using utilities::Type_length_value;

class Requests : public Client_test {
 protected:
    static utilities::Bytes bytes_of(std::uint32_t number, std::string const& state) {
        return utilities::serialize({Type_length_value(number), Type_length_value(state)});
    }
};

TEST_F(Requests, Reach_the_handler_with_state_and_number) {
    auto const sut = connected_client(keep_answers());
    peer->request(4711, "kPrepSD");
    auto const answer = answers.take();
    EXPECT_EQ(answer.state(), "kPrepSD");
    EXPECT_EQ(answer.number(), 4711U);
}

TEST_F(Requests, Come_one_after_the_other) {
    auto const sut = connected_client(succeed);
    for (std::uint32_t number = 1; number <= 50; ++number) {
        auto const* const state = number % 2 == 0 ? "kOn" : "kPrepSD";
        peer->request(number, state);
        ASSERT_EQ(peer->reply(), (Reply{number, state, 0}));
    }
}

TEST_F(Requests, May_have_any_number_in_any_order) {
    auto const sut = connected_client(succeed);
    for (std::uint32_t const number : {0U, 4'294'967'295U, 0U, 7U, 7U}) {
        peer->request(number, "kOn");
        ASSERT_EQ(peer->reply(), (Reply{number, "kOn", 0}));
    }
}

TEST_F(Requests, May_arrive_byte_by_byte) {
    auto const sut = connected_client(succeed);
    for (auto const byte : bytes_of(3, "kPrepSD")) {
        peer->send({byte});
    }
    EXPECT_EQ(peer->reply(), (Reply{3, "kPrepSD", 0}));
}

TEST_F(Requests, May_name_a_state_without_a_character) {
    auto const sut = connected_client(succeed);
    peer->request(1, "");
    EXPECT_EQ(peer->reply(), (Reply{1, "", 0}));
}

TEST_F(Requests, May_have_more_elements_than_are_known) {
    auto const sut = connected_client(succeed);
    peer->send(
        utilities::serialize({Type_length_value(1U), Type_length_value("kOn"), Type_length_value("from the future")}));
    EXPECT_EQ(peer->reply(), (Reply{1, "kOn", 0}));
}

TEST_F(Requests, That_came_meanwhile_are_told_by_their_newest) {
    Mailbox<bool> go_on;
    auto const sut = connected_client([&](std::string const& state, Answer answer) {
        answers.put(std::move(answer));
        if (state == "first") {
            go_on.take();
        }
    });
    peer->request(1, "first");
    auto first = answers.take();
    peer->request(2, "kPrepSD");
    peer->request(3, "kOn");
    go_on.put(true);
    auto newest = answers.take();
    EXPECT_EQ(newest.number(), 3U);
    EXPECT_FALSE(first.send(Status::succeeded)) << "nobody waits for it any more";
    EXPECT_TRUE(newest.send(Status::succeeded));
    EXPECT_EQ(peer->reply(), (Reply{3, "kOn", 0}));
}

TEST_F(Requests, By_the_thousand_end_with_the_answer_to_the_last) {
    auto const sut = connected_client(succeed);
    utilities::Bytes flood;
    for (std::uint32_t number = 1; number <= 1000; ++number) {
        auto const request = bytes_of(number, "kOn");
        flood.insert(flood.end(), request.begin(), request.end());
    }
    peer->send(flood);
    Reply last{};
    do {
        last = peer->reply();
    } while (last.number != 1000);
    EXPECT_EQ(last.state, "kOn");
}

TEST_F(Requests, Of_a_connection_that_is_lost_half_way_are_forgotten) {
    auto const sut = connected_client(succeed);
    auto half = bytes_of(1, "kPrepSD");
    half.resize(half.size() / 2);
    peer->send(half);
    peer.emplace([&] {
        peer.reset();
        return server->accept();
    }());
    EXPECT_EQ(peer->hello().state, "kOn");
    peer->request(2, "kPrepSD");
    EXPECT_EQ(peer->reply(), (Reply{2, "kPrepSD", 0}));
}

}  // namespace
}  // namespace component_client
