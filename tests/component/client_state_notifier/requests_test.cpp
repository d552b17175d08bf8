#include "server_fixture.h"

#include <csignal>
#include <fstream>
#include <utility>

#include <sys/syscall.h>
#include <unistd.h>

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
using testing::UnorderedElementsAre;

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

TEST_F(Request, Calls_everything_back_on_the_thread_of_the_server) {
    auto const completed = std::make_shared<std::promise<std::thread::id>>();
    std::thread::id asked;
    auto const client = connect("radio");
    sut->request_state_change(
        "kPrepSD",
        [&](auto const& /*name*/) {
            asked = std::this_thread::get_id();
            return false;
        },
        [completed](auto, auto const&) { completed->set_value(std::this_thread::get_id()); }, 1h);
    EXPECT_EQ(completed->get_future().get(), asked);
    EXPECT_NE(asked, std::this_thread::get_id());
}

/// What the kernel says of a thread of this process; "" for what it does not know.
std::string status_of(pid_t thread, std::string const& what) {
    std::ifstream status("/proc/self/task/" + std::to_string(thread) + "/status");
    for (std::string word, value; status >> word;) {
        if (word == what + ":") {
            status >> value;
            return value;
        }
    }
    return "";
}

class Thread_of_the_server : public Server_test {
 protected:
    /// Asked of itself, in a predicate.
    pid_t thread() {
        pid_t thread = 0;
        outcome_of(request("kPrepSD", 1h, [&](auto const& /*name*/) {
            thread = static_cast<pid_t>(::syscall(SYS_gettid));
            return false;
        }));
        return thread;
    }

    Test_client const client = connect("radio");
};

// The count is how often it has given its processor away by itself.
TEST_F(Thread_of_the_server, Waits_without_a_time_limit_while_there_is_nothing_to_do) {
    auto const sut_thread = thread();
    std::string last;
    ASSERT_TRUE(eventually([&] {  // it has gone back to its wait
        std::this_thread::sleep_for(50ms);
        return std::exchange(last, status_of(sut_thread, "voluntary_ctxt_switches")) == last && !last.empty();
    }));
    std::this_thread::sleep_for(300ms);
    EXPECT_EQ(status_of(sut_thread, "voluntary_ctxt_switches"), last);
}

TEST_F(Thread_of_the_server, Takes_no_signals) {
    auto const blocked = std::stoull(status_of(thread(), "SigBlk"), nullptr, 16);
    for (int const signal : {SIGTERM, SIGINT, SIGABRT, SIGHUP, SIGUSR1}) {
        EXPECT_NE(blocked >> (signal - 1) & 1U, 0U) << signal;
    }
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

TEST_F(Request, Keeps_the_low_byte_of_a_status) {
    auto radio = connect("radio");
    auto outcome = request("kPrepSD");
    radio.obey(0xabcd0100);
    EXPECT_EQ(outcome_of(outcome).status, Callback_status::succeeded);
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

TEST_F(Request, Takes_over_the_state_that_a_client_reached) {
    auto radio = connect("radio");
    auto outcome = request("kPrepSD");
    auto const number = radio.receive().number;
    radio.answer(number, "kHalfway", 1);
    outcome_of(outcome);
    EXPECT_THAT(sut->get_connected_clients(), ElementsAre(Pair("radio", "kHalfway")));
}

TEST_F(Request, Counts_no_answer_to_another_request_and_reports_it) {
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

TEST_F(Request, Counts_a_late_answer_to_the_one_before_for_nothing) {
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

TEST_F(Request, Updates_the_state_by_a_late_answer_when_no_other_was_sent) {
    auto radio = connect("radio");
    auto outcome = request("kPrepSD", 0s);
    auto const asked = radio.receive();
    outcome_of(outcome);
    radio.answer(asked.number, "kPrepSD");
    EXPECT_TRUE(eventually([&] { return sut->get_connected_clients().front().second == "kPrepSD"; }));
    EXPECT_THAT(reports(), IsEmpty());
}

TEST_F(Request, Counts_the_first_answer_of_several) {
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

TEST_F(Request, Counts_nothing_from_a_client_that_was_not_asked) {
    auto radio = connect("radio");
    auto seat = connect("seat", "kOff");
    seat.receive();
    auto outcome = request("kPrepSD", 5s, [](auto const& name) { return name == "radio"; });
    seat.answer(0, "kOn", 2);
    EXPECT_TRUE(eventually([&] { return sut->get_connected_clients().back().second == "kOn"; }));
    radio.obey();
    EXPECT_THAT(outcome_of(outcome).results, ElementsAre(Pair("radio", Component_client_return_type::succeeded)));
}

TEST_F(Request, Waits_for_both_clients_of_one_name_and_keeps_the_worse_status) {
    auto first = connect("radio");
    auto second = connect("radio");
    auto outcome = request("kPrepSD");
    second.obey(2);
    first.obey(1);
    auto const [status, results] = outcome_of(outcome);
    EXPECT_EQ(status, Callback_status::failed);
    EXPECT_THAT(results, ElementsAre(Pair("radio", Component_client_return_type::invalid)));
}

TEST_F(Request, Is_not_complete_while_one_of_two_with_one_name_is_silent) {
    auto first = connect("radio");
    auto second = connect("radio");
    auto outcome = request("kPrepSD", 1s);
    first.obey();
    auto const [status, results] = outcome_of(outcome);
    EXPECT_EQ(status, Callback_status::timed_out);
    EXPECT_THAT(results, ElementsAre(Pair("radio", Component_client_return_type::timed_out)));
}

TEST_F(Request, Counts_a_client_that_goes_as_not_answered) {
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

TEST_F(Request, Does_not_take_an_answer_from_whoever_gets_the_place_of_a_client_that_went) {
    std::optional radio(connect("radio"));
    auto outcome = request("kPrepSD", 1s);
    radio->receive();
    radio.reset();
    EXPECT_TRUE(eventually([&] { return sut->get_connected_clients().empty(); }));
    auto next = connect("radio");
    next.answer(0, "kPrepSD", 0);
    EXPECT_EQ(outcome_of(outcome).status, Callback_status::timed_out);
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

TEST_F(Request, Is_replaced_by_a_newer_one_and_then_never_completes) {
    auto radio = connect("radio");
    auto first = request("kPrepSD", 1s);
    radio.receive();
    auto second = request("kOn", 3s);
    radio.receive();
    EXPECT_EQ(outcome_of(second).status, Callback_status::timed_out);
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
