#include "server_fixture.h"

namespace client_state_notifier {
namespace {

using ara::log::LogLevel;
using test_support::logged_in;
using test_support::Test_client;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;
using testing::SizeIs;

using Request = Server_test;

TEST_F(Request, Succeeds_at_once_with_nobody_connected) {
    auto const outcome = outcome_of(request("kPrepSD", 1h));
    EXPECT_EQ(outcome.status, Callback_status::succeeded);
    EXPECT_THAT(outcome.results, IsEmpty());
    EXPECT_TRUE(has_logged(info("sending state change request to clients. new state = ", "kPrepSD")));
}

TEST_F(Request, Succeeds_at_once_with_nobody_selected) {
    auto client = connect("radio");
    auto const outcome = outcome_of(request("kPrepSD", 1h, [](auto const& /*name*/) { return false; }));
    EXPECT_EQ(outcome.status, Callback_status::succeeded);
    EXPECT_THAT(outcome.results, IsEmpty());
    EXPECT_FALSE(client.has_input());
}

TEST_F(Request, With_nobody_to_ask_does_not_say_that_all_responded) {
    outcome_of(request("kPrepSD"));
    auto const messages = log.messages();
    EXPECT_THAT(
        messages,
        Not(Contains(logged_in("SNCC", LogLevel::kInfo, "calling callback after all clients responded in time"))));
}

TEST_F(Request, Succeeds_when_all_answer_with_success) {
    auto radio = connect("radio");
    auto seat = connect("seat");
    auto outcome = request("kPrepSD");
    EXPECT_EQ(radio.obey().state, "kPrepSD");
    EXPECT_EQ(seat.obey().state, "kPrepSD");
    auto const [status, results] = outcome_of(outcome);
    EXPECT_EQ(status, Callback_status::succeeded);
    EXPECT_THAT(results, ElementsAre(Pair("radio", Component_client_return_type::succeeded),
                                     Pair("seat", Component_client_return_type::succeeded)));
    EXPECT_TRUE(has_logged(logged_in("SNCC", LogLevel::kInfo, "calling callback after all clients responded in time")));
}

TEST_F(Request, Fails_when_one_answers_without_success) {
    auto radio = connect("radio");
    auto seat = connect("seat");
    auto outcome = request("kPrepSD");
    radio.obey(0);
    seat.obey(2);
    auto const [status, results] = outcome_of(outcome);
    EXPECT_EQ(status, Callback_status::failed);
    EXPECT_THAT(results, ElementsAre(Pair("radio", Component_client_return_type::succeeded),
                                     Pair("seat", Component_client_return_type::invalid)));
}

TEST_F(Request, Times_out_with_a_client_that_stays_silent) {
    auto radio = connect("radio");
    auto seat = connect("seat");
    auto outcome = request("kPrepSD", 1s);
    radio.obey();
    auto const [status, results] = outcome_of(outcome);
    EXPECT_EQ(status, Callback_status::timed_out);
    EXPECT_THAT(results, ElementsAre(Pair("radio", Component_client_return_type::succeeded),
                                     Pair("seat", Component_client_return_type::timed_out)));
    EXPECT_TRUE(has_logged(logged_in("SNCC", LogLevel::kInfo, "calling callback after some clients timed out")));
}

TEST_F(Request, With_no_time_at_all_times_out_at_once) {
    auto const radio = connect("radio");
    EXPECT_EQ(outcome_of(request("kPrepSD", 0s)).status, Callback_status::timed_out);
}

TEST_F(Request, Has_its_time_from_the_moment_at_which_it_is_made) {
    auto const radio = connect("radio");
    std::future<Outcome> outcome;
    {
        Busy_server const busy(*sut);
        outcome = request("kPrepSD", 1s);
        std::this_thread::sleep_for(1100ms);  // its time is over before the server can look at it
    }
    auto const begin = std::chrono::steady_clock::now();
    EXPECT_EQ(outcome_of(outcome).status, Callback_status::timed_out);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 1s);
}

TEST_F(Request, Asks_only_those_that_the_predicate_selects) {
    auto radio = connect("radio");
    auto dem = connect("diag::dem");
    auto outcome = request("kPrepSD", 5s, [](auto const& name) { return name == "diag::dem"; });
    dem.obey();
    EXPECT_THAT(outcome_of(outcome).results, ElementsAre(Pair("diag::dem", Component_client_return_type::succeeded)));
    EXPECT_FALSE(radio.has_input());
}

TEST_F(Request, Is_numbered_for_each_client_by_itself) {
    auto radio = connect("radio");
    auto outcome = request("kPrepSD");
    EXPECT_EQ(radio.obey().number, 1U);
    outcome_of(outcome);
    auto seat = connect("seat");
    outcome = request("kOn");
    EXPECT_EQ(radio.obey().number, 2U);
    EXPECT_EQ(seat.obey().number, 1U);
    EXPECT_EQ(outcome_of(outcome).status, Callback_status::succeeded);
}

TEST_F(Request, Does_not_concern_a_client_that_joins_in_the_middle) {
    auto radio = connect("radio");
    auto outcome = request("kPrepSD");
    auto const asked = radio.receive();
    auto late = connect("late");
    radio.answer(asked.number, asked.state);
    EXPECT_THAT(outcome_of(outcome).results, ElementsAre(Pair("radio", Component_client_return_type::succeeded)));
    EXPECT_FALSE(late.has_input());
}

TEST_F(Request, Concerns_a_client_that_introduces_itself_before_it_is_taken) {
    auto const radio = connect("radio");
    std::optional<Test_client> late;
    std::future<Outcome> outcome;
    {
        Busy_server const busy(*sut);
        late.emplace(path, "late", "kOn");
        outcome = request("kPrepSD", 2s, [](auto const& name) { return name == "late"; });
    }
    EXPECT_EQ(late->obey().state, "kPrepSD");
    EXPECT_THAT(outcome_of(outcome).results, ElementsAre(Pair("late", Component_client_return_type::succeeded)));
}

TEST_F(Request, Is_replaced_by_a_newer_one_and_then_never_completes) {
    auto radio = connect("radio");
    auto first = request("kPrepSD", 1s);
    radio.receive();
    auto second = request("kOn", 2s);
    radio.receive();
    EXPECT_EQ(outcome_of(second).status, Callback_status::timed_out);
    EXPECT_THROW(first.get(), std::future_error) << "its callback has gone without a call";
}

// There is a wake-up for each of the two, and only one request.
TEST_F(Request, Is_sent_once_when_it_replaces_another_before_that_is_taken) {
    auto radio = connect("radio");
    std::future<Outcome> first;
    std::future<Outcome> second;
    {
        Busy_server const busy(*sut);
        first = request("kPrepSD");
        second = request("kOn");
    }
    auto const asked = radio.receive();
    EXPECT_EQ(asked.state, "kOn");
    EXPECT_EQ(asked.number, 1U);
    auto const other = connect("other");  // the server has seen both wake-ups by now
    radio.answer(asked.number, asked.state);
    EXPECT_THAT(outcome_of(second).results, ElementsAre(Pair("radio", Component_client_return_type::succeeded)));
    EXPECT_FALSE(radio.has_input());
    EXPECT_THROW(first.get(), std::future_error) << "its callback has gone without a call";
}

// A client that has been added since then shows that the server has looked for requests.
TEST_F(Request, Without_a_predicate_or_a_callback_is_ignored) {
    auto const everybody = [](auto const& /*name*/) { return true; };
    auto const first = connect("first");
    sut->request_state_change(
        "kPrepSD", nullptr, [](auto, auto const&) { FAIL(); }, 1h);
    auto const second = connect("second");
    sut->request_state_change("kPrepSD", everybody, nullptr, 1h);
    auto third = connect("third");
    EXPECT_THAT(log.messages(),
                Not(Contains(info("sending state change request to clients. new state = ", "kPrepSD"))));
    EXPECT_FALSE(third.has_input());
    EXPECT_EQ(outcome_of(request("kOn", 0s)).status, Callback_status::timed_out) << "the server still works";
}

TEST_F(Request, May_be_made_by_the_completion_of_another) {
    std::promise<void> done;
    sut->request_state_change(
        "kPrepSD", [](auto const&) { return true; },
        [&](auto, auto const&) {
            sut->get_connected_clients();
            sut->request_state_change(
                "kOn", [](auto const&) { return true; }, [&](auto, auto const&) { done.set_value(); }, 1s);
        },
        1s);
    EXPECT_EQ(done.get_future().wait_for(5s), std::future_status::ready);
}

TEST_F(Request, Sees_the_clients_in_the_order_of_their_connections) {
    auto const first = connect("b");
    auto const second = connect("a");
    std::vector<std::string> asked;
    outcome_of(request("kPrepSD", 0s, [&](auto const& name) {
        asked.push_back(name);
        return false;
    }));
    EXPECT_THAT(asked, ElementsAre("b", "a"));
}

TEST_F(Request, Reaches_hundreds_of_clients) {
    std::vector<test_support::Test_client> clients;
    clients.reserve(500);
    for (int i = 0; i < 500; ++i) {
        clients.emplace_back(path, "client " + std::to_string(i), "kOn");
    }
    ASSERT_TRUE(eventually([&] { return sut->get_connected_clients().size() == 500; }));
    auto outcome = request("kPrepSD");
    for (auto& client : clients) {
        client.obey();
    }
    auto const [status, results] = outcome_of(outcome);
    EXPECT_EQ(status, Callback_status::succeeded);
    EXPECT_THAT(results, SizeIs(500));
}

}  // namespace
}  // namespace client_state_notifier
