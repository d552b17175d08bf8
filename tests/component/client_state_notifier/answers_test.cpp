// What the answers of clients do to a request and to what is known of them.

#include "server_fixture.h"

namespace client_state_notifier {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

using Answer = Server_test;

TEST_F(Answer, Keeps_the_low_byte_of_a_status) {
    auto radio = connect("radio");
    auto outcome = request("kPrepSD");
    radio.obey(0xabcd0100);
    EXPECT_EQ(outcome_of(outcome).status, Callback_status::succeeded);
}

TEST_F(Answer, Takes_over_the_state_that_a_client_reached) {
    auto radio = connect("radio");
    auto outcome = request("kPrepSD");
    auto const number = radio.receive().number;
    radio.answer(number, "kHalfway", 1);
    outcome_of(outcome);
    EXPECT_THAT(sut->get_connected_clients(), ElementsAre(Pair("radio", "kHalfway")));
}

TEST_F(Answer, Counts_no_answer_to_another_request_and_reports_it) {
    auto radio = connect("radio");
    auto outcome = request("kPrepSD", 1s);
    radio.receive();
    radio.answer(7, "kOff");
    EXPECT_EQ(outcome_of(outcome).status, Callback_status::timed_out);
    ASSERT_THAT(reports(), SizeIs(1));
    EXPECT_EQ(reports()[0].name, "radio");
    EXPECT_EQ(reports()[0].status, Client_status::answered_out_of_turn);
    EXPECT_EQ(reports()[0].state, "kOff");
    EXPECT_THAT(sut->get_connected_clients(), ElementsAre(Pair("radio", "unknown")));
}

// The number of what a client in another state is asked when it introduces itself.
TEST_F(Answer, Is_reported_from_a_client_that_was_sent_nothing_whatever_its_number) {
    auto radio = connect("radio");
    radio.answer(0, "kOff");
    ASSERT_TRUE(eventually([&] { return reports().size() == 1; }));
    EXPECT_EQ(reports()[0].status, Client_status::answered_out_of_turn);
    EXPECT_EQ(reports()[0].state, "kOff");
    EXPECT_THAT(sut->get_connected_clients(), ElementsAre(Pair("radio", "unknown")));
}

TEST_F(Answer, Is_in_turn_to_what_is_asked_at_the_introduction) {
    auto radio = connect("radio", "kPrepSD");
    radio.answer(radio.receive().number, "kOn");
    EXPECT_TRUE(eventually([&] { return sut->get_connected_clients().front().second == "kOn"; }));
    EXPECT_THAT(reports(), IsEmpty());
}

TEST_F(Answer, Counts_a_late_answer_to_the_one_before_for_nothing) {
    auto radio = connect("radio");
    auto first = request("kPrepSD", 0s);
    auto const old = radio.receive();
    EXPECT_EQ(outcome_of(first).status, Callback_status::timed_out);
    auto second = request("kOn");
    auto const current = radio.receive();
    radio.answer(old.number, old.state);
    EXPECT_TRUE(eventually([&] { return reports().size() == 1; }));
    radio.answer(current.number, current.state);
    EXPECT_EQ(outcome_of(second).status, Callback_status::succeeded);
}

TEST_F(Answer, Updates_the_state_by_a_late_answer_when_no_other_was_sent) {
    auto radio = connect("radio");
    auto outcome = request("kPrepSD", 0s);
    auto const asked = radio.receive();
    outcome_of(outcome);
    radio.answer(asked.number, "kPrepSD");
    EXPECT_TRUE(eventually([&] { return sut->get_connected_clients().front().second == "kPrepSD"; }));
    EXPECT_THAT(reports(), IsEmpty());
}

TEST_F(Answer, Counts_the_first_answer_of_several) {
    auto radio = connect("radio");
    auto seat = connect("seat");
    auto outcome = request("kPrepSD");
    auto const asked = radio.receive();
    radio.answer(asked.number, "kPrepSD", 0);
    radio.answer(asked.number, "kPrepSD", 2);
    radio.answer(asked.number, "kOn", 1);
    EXPECT_TRUE(eventually([&] { return sut->get_connected_clients().front().second == "kOn"; }));
    seat.obey();
    EXPECT_EQ(outcome_of(outcome).status, Callback_status::succeeded);
}

TEST_F(Answer, Counts_nothing_from_a_client_that_was_not_asked) {
    auto radio = connect("radio");
    auto seat = connect("seat", "kOff");
    seat.receive();
    auto outcome = request("kPrepSD", 5s, [](auto const& name) { return name == "radio"; });
    seat.answer(0, "kOn", 2);
    EXPECT_TRUE(eventually([&] { return sut->get_connected_clients().back().second == "kOn"; }));
    radio.obey();
    EXPECT_THAT(outcome_of(outcome).results, ElementsAre(Pair("radio", Component_client_return_type::succeeded)));
}

TEST_F(Answer, Waits_for_both_clients_of_one_name_and_keeps_the_worse_status) {
    auto first = connect("radio");
    auto second = connect("radio");
    auto outcome = request("kPrepSD");
    second.obey(2);
    first.obey(1);
    auto const [status, results] = outcome_of(outcome);
    EXPECT_EQ(status, Callback_status::failed);
    EXPECT_THAT(results, ElementsAre(Pair("radio", Component_client_return_type::invalid)));
}

// Any byte may come as a status; what a client has not answered at all is worse.
TEST_F(Answer, Hides_no_time_out_behind_a_status_that_nobody_knows) {
    auto first = connect("radio");
    auto second = connect("radio");
    auto outcome = request("kPrepSD", 1s);
    first.obey(200);
    auto const [status, results] = outcome_of(outcome);
    EXPECT_EQ(status, Callback_status::timed_out);
    EXPECT_THAT(results, ElementsAre(Pair("radio", Component_client_return_type::timed_out)));
}

TEST_F(Answer, Hides_no_status_that_nobody_knows_behind_one_that_is_known) {
    auto first = connect("radio");
    auto second = connect("radio");
    auto outcome = request("kPrepSD");
    first.obey(200);
    second.obey(2);
    EXPECT_THAT(outcome_of(outcome).results, ElementsAre(Pair("radio", Component_client_return_type{200})));
}

TEST_F(Answer, Is_not_complete_while_one_of_two_with_one_name_is_silent) {
    auto first = connect("radio");
    auto second = connect("radio");
    auto outcome = request("kPrepSD", 1s);
    first.obey();
    auto const [status, results] = outcome_of(outcome);
    EXPECT_EQ(status, Callback_status::timed_out);
    EXPECT_THAT(results, ElementsAre(Pair("radio", Component_client_return_type::timed_out)));
}

TEST_F(Answer, Counts_a_client_that_goes_as_not_answered) {
    auto radio = connect("radio");
    std::optional seat(connect("seat"));
    auto outcome = request("kPrepSD", 1s);
    seat->receive();
    seat.reset();
    radio.obey();
    auto const [status, results] = outcome_of(outcome);
    EXPECT_EQ(status, Callback_status::timed_out);
    EXPECT_THAT(results, ElementsAre(Pair("radio", Component_client_return_type::succeeded),
                                     Pair("seat", Component_client_return_type::timed_out)));
}

TEST_F(Answer, Does_not_take_an_answer_from_whoever_gets_the_place_of_a_client_that_went) {
    std::optional radio(connect("radio"));
    auto outcome = request("kPrepSD", 1s);
    radio->receive();
    radio.reset();
    EXPECT_TRUE(eventually([&] { return sut->get_connected_clients().empty(); }));
    auto next = connect("radio", "kPrepSD");  // and is asked for something, so that its answer is in turn
    next.answer(next.receive().number, "kOn");
    EXPECT_EQ(outcome_of(outcome).status, Callback_status::timed_out);
}

}  // namespace
}  // namespace client_state_notifier
