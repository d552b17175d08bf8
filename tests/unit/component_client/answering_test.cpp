#include "client_test.h"
#include "component_client/answer_book.h"

#include <thread>

namespace component_client {
namespace {

class Answering : public Client_test {
 protected:
    /// The answer to a request that has reached the client.
    Answer asked(std::uint32_t number, std::string const& state) {
        peer->request(number, state);
        return answers.take();
    }
};

TEST_F(Answering, Success_means_that_the_requested_state_is_reached) {
    auto const sut = connected_client(keep_answers());
    EXPECT_TRUE(asked(5, "kPrepSD").send(Status::succeeded));
    EXPECT_EQ(peer->reply(), (Reply{5, "kPrepSD", 0}));
    EXPECT_EQ(sut.state(), "kPrepSD");
}

class Failing : public Answering, public testing::WithParamInterface<Status> {};

TEST_P(Failing, Means_that_the_client_stays_in_its_state) {
    auto const sut = connected_client(keep_answers());
    EXPECT_TRUE(asked(5, "kPrepSD").send(GetParam()));
    EXPECT_EQ(peer->reply(), (Reply{5, "kOn", static_cast<std::uint32_t>(GetParam())}));
    EXPECT_EQ(sut.state(), "kOn");
}

INSTANTIATE_TEST_SUITE_P(Statuses, Failing, testing::Values(Status::general_error, Status::invalid, Status::timed_out));

TEST_F(Answering, May_name_the_state_reached) {
    auto const sut = connected_client(keep_answers());
    EXPECT_TRUE(asked(5, "kPrepSD").send(Status::general_error, "degraded"));
    EXPECT_EQ(peer->reply(), (Reply{5, "degraded", 1}));
    EXPECT_EQ(sut.state(), "degraded");
}

TEST_F(Answering, May_happen_later_and_on_another_thread) {
    auto const sut = connected_client(keep_answers());
    std::thread([answer = asked(1, "kPrepSD")]() mutable { answer.send(Status::succeeded); }).join();
    EXPECT_EQ(peer->reply(), (Reply{1, "kPrepSD", 0}));
}

TEST_F(Answering, Happens_once) {
    auto const sut = connected_client(keep_answers());
    auto answer = asked(1, "kPrepSD");
    EXPECT_TRUE(answer.send(Status::succeeded));
    EXPECT_FALSE(answer.send(Status::general_error));
    EXPECT_EQ(peer->reply().number, 1U);
    EXPECT_TRUE(asked(2, "kOn").send(Status::succeeded));
    EXPECT_EQ(peer->reply().number, 2U) << "and nothing between them";
}

TEST_F(Answering, Happens_by_itself_when_an_answer_is_dropped) {
    auto const sut = connected_client(keep_answers());
    { auto const dropped = asked(1, "kPrepSD"); }
    EXPECT_EQ(peer->reply(), (Reply{1, "kOn", 1}));
}

TEST_F(Answering, Happens_by_itself_when_an_answer_is_overwritten) {
    auto const sut = connected_client(keep_answers());
    auto answer = asked(1, "kPrepSD");
    answer = Answer({}, 0, 0, "");
    EXPECT_EQ(peer->reply(), (Reply{1, "kOn", 1}));
}

TEST_F(Answering, Is_to_the_request_whose_answer_was_moved_here_last) {
    auto const sut = connected_client(keep_answers());
    auto answer = asked(1, "kPrepSD");
    answer = asked(2, "kOff");
    EXPECT_EQ(answer.number(), 2U);
    EXPECT_EQ(answer.state(), "kOff");
    EXPECT_TRUE(answer.send(Status::succeeded));
    EXPECT_EQ(peer->reply(), (Reply{2, "kOff", 0}));
}

TEST_F(Answering, Does_not_happen_for_an_answer_that_was_moved_on) {
    auto const sut = connected_client(keep_answers());
    auto answer = asked(1, "kPrepSD");
    {
        auto moved = std::move(answer);
        moved.withhold();
    }
    EXPECT_TRUE(asked(2, "kOn").send(Status::succeeded));
    EXPECT_EQ(peer->reply().number, 2U);
}

TEST_F(Answering, Happens_when_the_handler_throws_anything_which_is_told) {
    Mailbox<std::string> troubles;
    options.on_trouble = [&troubles](std::string const& text) { troubles.put(text); };
    auto const sut = connected_client([](std::string const& state, Answer const&) {
        if (state == "kPrepSD") {
            throw std::runtime_error("no brakes");
        }
        throw 42;
    });
    peer->request(1, "kPrepSD");
    EXPECT_EQ(peer->reply(), (Reply{1, "kOn", 1}));
    EXPECT_EQ(troubles.take(), "no brakes");
    peer->request(2, "kOff");
    EXPECT_EQ(peer->reply(), (Reply{2, "kOn", 1})) << "it lives on";
    EXPECT_EQ(troubles.take(), "a callback has thrown something unknown");
    peer->request(3, "kPrepSD");
    EXPECT_EQ(peer->reply(), (Reply{3, "kOn", 1}));
}

TEST_F(Answering, Of_a_withheld_answer_never_happens) {
    auto const sut = connected_client(keep_answers());
    auto answer = asked(1, "kPrepSD");
    answer.withhold();
    EXPECT_FALSE(answer.send(Status::succeeded));
    asked(2, "kPrepSD").send(Status::succeeded);
    EXPECT_EQ(peer->reply().number, 2U);
}

TEST_F(Answering, To_a_request_that_a_newer_one_has_replaced_changes_nothing) {
    auto const sut = connected_client(keep_answers());
    auto replaced = asked(1, "kPrepSD");
    auto newest = asked(2, "kOn");
    EXPECT_FALSE(replaced.send(Status::succeeded));
    EXPECT_EQ(sut.state(), "kOn");
    EXPECT_TRUE(newest.send(Status::succeeded));
    EXPECT_EQ(peer->reply(), (Reply{2, "kOn", 0}));
}

TEST_F(Answering, After_the_client_has_gone_is_for_nobody) {
    std::optional<Answer> answer;
    {
        auto const sut = connected_client(keep_answers());
        answer = asked(1, "kPrepSD");
    }
    EXPECT_FALSE(answer->send(Status::succeeded));
}

TEST(Answer_book_test, Keeps_no_answer_for_the_next_connection) {
    Answer_book sut("kOn");
    EXPECT_TRUE(sut.put_answer(sut.open(1), Status::succeeded, nullptr));
    sut.forget_requests();
    EXPECT_THAT(sut.take_messages(), testing::IsEmpty());
}

TEST_F(Answering, Is_not_held_up_by_a_server_that_does_not_read) {
    options.state = std::string(300'000, 's');  // more than fits into the socket
    auto const sut = connected_client(keep_answers());
    EXPECT_TRUE(asked(1, "kPrepSD").send(Status::general_error));
    EXPECT_TRUE(asked(2, "kPrepSD").send(Status::general_error)) << "the client goes on reading";
    EXPECT_EQ(peer->reply(), (Reply{1, options.state, 1}));
    EXPECT_EQ(peer->reply(), (Reply{2, options.state, 1}));
}

}  // namespace
}  // namespace component_client
