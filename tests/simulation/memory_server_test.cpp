// The server that the daemon runs, driven turn by turn: what is told here of milliseconds is exact.

#include "simulation/notification/memory_server.h"

#include "status/page_writer.h"

#include <cstdint>
#include <list>
#include <memory>

#include <gmock/gmock.h>

namespace simulation {
namespace {

using namespace std::chrono_literals;
using client_state_notifier::Callback_status;
using client_state_notifier::Client_results;
using client_state_notifier::Component_client_return_type;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class Server_without_a_thread : public testing::Test {
 protected:
    Client_end& come(std::string const& name, std::string const& state = "kOn") {
        auto& client = clients.emplace_back(sockets, name, state);
        sut.serve();
        return client;
    }

    void request(std::string const& state, std::chrono::seconds timeout) {
        EXPECT_TRUE(sut.request_state_change(
            state, [](auto const&) { return true; },
            [this, state](Callback_status status, Client_results const& results) {
                ended.emplace_back(state, status);
                last_results = results;
            },
            timeout));
        sut.serve();
    }

    void at(std::chrono::nanoseconds time) {
        now = time;
        sut.serve();
    }

    void answer(Client_end& client, std::uint32_t status = 0) {
        auto const asked = client.take_request();
        ASSERT_TRUE(asked);
        client.answer(*asked, status);
        sut.serve();
    }

    std::chrono::nanoseconds now{0};
    int changes{0};
    Memory_sockets sockets{[this] { return now; }};
    Memory_server sut{"kOn", nullptr, sockets};
    std::list<Client_end> clients;
    std::vector<std::pair<std::string, Callback_status>> ended;
    Client_results last_results;
};

TEST_F(Server_without_a_thread, Asks_who_has_come_and_ends_with_the_last_answer) {
    auto& radio = come("radio");
    auto& seat = come("seat");
    EXPECT_EQ(sut.next_deadline(), std::nullopt);

    request("kPrepSD", 10s);
    EXPECT_EQ(sut.next_deadline(), 10s);
    now = 3s;
    answer(seat, 1);
    EXPECT_THAT(ended, IsEmpty());
    answer(radio);

    EXPECT_THAT(ended, ElementsAre(Pair("kPrepSD", Callback_status::failed)));
    EXPECT_THAT(last_results, ElementsAre(Pair("radio", Component_client_return_type::succeeded),
                                          Pair("seat", Component_client_return_type::general_error)));
    EXPECT_EQ(sut.next_deadline(), std::nullopt);
    EXPECT_THAT(sut.get_connected_clients(), ElementsAre(Pair("radio", "kPrepSD"), Pair("seat", "kPrepSD")));
}

TEST_F(Server_without_a_thread, Ends_a_request_at_its_time_and_not_a_nanosecond_before) {
    come("radio");
    now = 1s;
    request("kPrepSD", 10s);

    at(11s - 1ns);
    EXPECT_THAT(ended, IsEmpty());
    at(11s);

    EXPECT_THAT(ended, ElementsAre(Pair("kPrepSD", Callback_status::timed_out)));
}

TEST_F(Server_without_a_thread, Forgets_a_request_for_a_newer_one) {
    auto& radio = come("radio");
    request("kPrepSD", 10s);
    auto const first = radio.take_request();
    request("kOn", 10s);

    ASSERT_TRUE(first);
    radio.answer(*first, 0);
    sut.serve();
    EXPECT_THAT(ended, IsEmpty());
    answer(radio);

    EXPECT_THAT(ended, ElementsAre(Pair("kOn", Callback_status::succeeded)));
}

TEST_F(Server_without_a_thread, Waits_for_who_has_gone_without_an_answer) {
    auto const& gone = come("radio");
    request("kPrepSD", 10s);
    clients.pop_back();
    static_cast<void>(gone);
    at(5s);
    EXPECT_THAT(sut.get_connected_clients(), IsEmpty());
    EXPECT_THAT(ended, IsEmpty());

    at(10s);

    EXPECT_THAT(last_results, ElementsAre(Pair("radio", Component_client_return_type::timed_out)));
}

TEST_F(Server_without_a_thread, Drops_who_does_not_say_who_it_is_within_five_seconds) {
    now = 1s;
    auto const silent = sockets.connect();
    sut.serve();
    EXPECT_EQ(sut.next_deadline(), 6s);
    at(6s - 1ns);
    EXPECT_FALSE(silent.poll(POLLIN, 0).second);

    at(6s);

    EXPECT_TRUE(silent.poll(POLLIN, 0).second);
    EXPECT_EQ(sut.next_deadline(), std::nullopt);
}

TEST_F(Server_without_a_thread, Drops_who_does_not_read) {
    auto const& deaf = come("radio");
    auto const message = std::string(30'000, 'x');
    while (ended.empty() && !sut.get_connected_clients().empty()) {
        request(message, 10s);
    }

    EXPECT_EQ(deaf.socket().poll(POLLIN, 0).first & POLLHUP, POLLHUP);
}

TEST_F(Server_without_a_thread, Tells_who_comes_in_another_state_the_current_one) {
    auto& radio = come("radio", "kPrepSD");

    auto const told = radio.take_request();

    ASSERT_TRUE(told);
    EXPECT_EQ(told->state, "kOn");
    EXPECT_EQ(told->number, 0U);
}

TEST_F(Server_without_a_thread, Needs_a_turn_whenever_something_has_changed) {
    sockets.on_change([this] { ++changes; });
    Client_end radio(sockets, "radio", "kOn");
    EXPECT_GT(changes, 0);
    sut.serve();
    changes = 0;

    sut.request_state_change(
        "kPrepSD", [](auto const&) { return true; }, [](auto, auto const&) {}, 1s);

    EXPECT_EQ(changes, 1);
    EXPECT_EQ(radio.take_request(), std::nullopt) << "no turn was made";
}

TEST_F(Server_without_a_thread, Tells_the_status_page_of_each_client_and_request) {
    auto const page = std::make_unique<status::Page>();
    status::set_page(page.get());
    auto& radio = come("radio");
    auto& seat = come("seat");
    EXPECT_EQ(page->server.clients, 2U);
    request("kPrepSD", 10s);
    EXPECT_EQ(page->server.asked, 2U);
    EXPECT_EQ(page->server.unanswered, 2U);
    answer(radio);
    EXPECT_EQ(page->server.unanswered, 1U);
    answer(seat, 1);
    EXPECT_EQ(page->server.in_progress, 0U);
    EXPECT_EQ(page->server.ended_how, static_cast<std::uint64_t>(status::Answer::in_time));
    auto const told = page->events.load();
    radio.answer({7, "kOn"}, 0);
    sut.serve();
    EXPECT_EQ(page->events, told + 1) << "an answer out of turn";
    clients.pop_back();
    sut.serve();
    EXPECT_EQ(page->server.clients, 1U);
    status::set_page(nullptr);
}

TEST(Sockets_in_memory, Are_read_to_the_end_of_what_came_before_they_tell_of_the_close) {
    Memory_sockets sockets([] { return 0s; });
    auto [left, right] = sockets.socket_pair();
    left.sendl("word", 4, 0);
    { auto const gone = std::move(left); }

    char bytes[8];
    EXPECT_EQ(right.recv(bytes, sizeof bytes, 0), 4U);
    EXPECT_THROW(right.recv(bytes, sizeof bytes, 0), utilities::ExceptionSocketClosed);
    EXPECT_THROW(right.sendl("x", 1, 0), std::system_error);
}

TEST(Sockets_in_memory, Break_a_connection_whose_other_end_did_not_read) {
    Memory_sockets sockets([] { return 0s; });
    auto [left, right] = sockets.socket_pair();
    right.sendl("word", 4, 0);
    { auto const gone = std::move(left); }

    char byte = 0;
    EXPECT_THROW(right.recv(&byte, 1, 0), std::system_error);
}

TEST(Sockets_in_memory, Have_the_lowest_numbers_that_are_free) {
    Memory_sockets sockets([] { return 0s; });
    auto first = sockets.socket_pair();
    auto const second = sockets.socket_pair();
    EXPECT_EQ(second.first.get_fd(), first.second.get_fd() + 1);
    int const free = first.first.get_fd();
    { auto const gone = std::move(first); }

    EXPECT_EQ(sockets.socket_pair().first.get_fd(), free);
}

}  // namespace
}  // namespace simulation
