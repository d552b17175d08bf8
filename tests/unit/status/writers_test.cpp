#include "base/descriptor.h"
#include "base/temporary_directory.h"
#include "status/driver_status.h"
#include "status/network_status.h"
#include "status/page_file.h"
#include "status/restart_status.h"
#include "status/server_status.h"
#include "status/services_status.h"
#include "tools/page/words.h"
#include "written_page.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include <sys/socket.h>
#include <unistd.h>

namespace status {
namespace {

using statectl::text_of;
using testing::ElementsAre;

class Status_writers : public Written_page {
 protected:
    std::vector<std::uint64_t> kinds() const {
        std::vector<std::uint64_t> all;
        for (auto const& event : read().events) {
            all.push_back(event.kind);
        }
        return all;
    }

    static std::uint64_t number(Event_kind kind) { return static_cast<std::uint64_t>(kind); }
    static std::uint64_t number(Answer answer) { return static_cast<std::uint64_t>(answer); }
    static std::uint64_t number(State state) { return static_cast<std::uint64_t>(state); }
};

TEST_F(Status_writers, Cut_a_text_that_is_too_long_and_tell_texts_apart_by_what_is_left) {
    struct {
        Text<Shared_word, 16> place;
        Shared_word behind;
    } words{};
    auto& place = words.place;
    for (auto const& [text, left] : {std::pair<std::string, std::string>{"", ""},
                                     {"a", "a"},
                                     {"0123456789abcdef", "0123456789abcdef"},
                                     {"0123456789abcdefg", "0123456789abc..."},
                                     {std::string(1000, 'y'), "yyyyyyyyyyyyy..."}}) {
        put(place, text);
        EXPECT_TRUE(holds(place, text));
        EXPECT_FALSE(holds(place, "other"));
        Text<std::uint64_t, 16> const copy{{own(place.words[0]), own(place.words[1])}};
        EXPECT_EQ(text_of(copy), left);
        EXPECT_EQ(own(words.behind), 0U);
    }
}

TEST_F(Status_writers, Of_the_queue_do_what_the_queue_does) {
    for (std::uint64_t command : {1U, 2U, 4U}) {
        key_taken(command);
    }
    auto driver = read().driver;
    EXPECT_EQ(driver.waiting, 3U);
    EXPECT_THAT(std::vector(driver.queue.begin(), driver.queue.begin() + 4), ElementsAre(1, 2, 4, 0));
    command_consumed();
    driver = read().driver;
    EXPECT_THAT(std::vector(driver.queue.begin(), driver.queue.begin() + 3), ElementsAre(2, 4, 0));
    queue_cleared();
    key_taken(5);
    driver = read().driver;
    EXPECT_EQ(driver.waiting, 1U);
    EXPECT_EQ(driver.queue[0], 5U);
    EXPECT_EQ(driver.keys_cleared, 2U);
    command_consumed();
    command_consumed();
    EXPECT_EQ(read().driver.waiting, 0U);
}

TEST_F(Status_writers, Tell_what_a_transition_used_up_that_it_was_not_the_cause_of) {
    put(written->life.nm_usage, 1U);
    key_taken(4);
    transition(number(State::running), number(State::preparing), 4);
    command_consumed();
    EXPECT_EQ(read().driver.keys_swallowed, 0U) << "the cause";
    transition(number(State::preparing), number(State::prepared_sd), 0);
    command_consumed();
    EXPECT_EQ(read().driver.keys_swallowed, 0U) << "nothing waited";
    key_taken(1);
    transition(number(State::nm_controlled), number(State::post_run), 0);
    command_consumed();
    auto const page = read();
    EXPECT_EQ(page.driver.keys_swallowed, 1U);
    EXPECT_EQ(page.driver.last_swallowed, 1U);
    EXPECT_NE(page.driver.last_swallowed_at, 0U);
    EXPECT_EQ(page.driver.swallowed_from, number(State::nm_controlled));
    EXPECT_EQ(page.driver.swallowed_row, 2U);
    EXPECT_EQ(page.events.back().kind, number(Event_kind::key_swallowed));
}

TEST_F(Status_writers, Count_what_any_thread_tells) {
    std::vector<std::thread> threads;
    for (std::uint64_t i = 0; i < 4; ++i) {
        threads.emplace_back([] {
            for (std::uint64_t type = 0; type < 9; ++type) {
                restart_requested(type);
                restart_failed();
            }
            call_failed(Network_call::set_user_data);
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    auto const counters = read().counters;
    EXPECT_THAT(counters.restarts, ElementsAre(16, 4, 4, 4, 4, 4));
    EXPECT_EQ(counters.restarts_failed, 36U);
    EXPECT_THAT(counters.failed_calls, ElementsAre(0, 0, 4));
    EXPECT_EQ(own(written->events), 36U) << "watchers look";
}

TEST_F(Status_writers, Tell_since_when_the_ecu_is_in_its_state) {
    ecu_state(0);
    auto const since = own(written->network.ecu_since);
    EXPECT_NE(since, 0U);
    ecu_state(0);
    EXPECT_EQ(own(written->network.ecu_since), since);
    ecu_state(1);
    EXPECT_GT(own(written->network.ecu_since), since);
    EXPECT_EQ(own(written->network.ecu_state), 1U);
    EXPECT_EQ(own(written->network.sequence), 6U) << "two for each change, and for each that was none";
}

TEST_F(Status_writers, Tell_the_first_eight_bytes_of_a_report_as_an_event) {
    std::array<std::uint8_t, 9> const report{0x10, 2, 3, 4, 5, 6, 7, 8, 9};
    network_state(report.data(), report.size());
    EXPECT_EQ(read().events.back().numbers[1], 0x08070605'04030210U);
}

TEST_F(Status_writers, Tell_which_setting_keeps_a_command_waiting) {
    put(written->driver.state, number(State::running));
    key_taken(2);
    auto const blocked = [this](std::uint64_t nm_usage) {
        put(written->life.nm_usage, nm_usage);
        beat(false, false);
        return static_cast<Blocked>(own(written->driver.blocked));
    };
    EXPECT_EQ(blocked(0), Blocked::by_setting);
    EXPECT_EQ(blocked(1), Blocked::not_at_all);
}

TEST_F(Status_writers, Keep_the_longest_cycle) {
    put(written->driver.longest, 3'600'000'000'000);
    beat(false, false);
    beat(false, false);
    EXPECT_EQ(own(written->driver.longest), 3'600'000'000'000U);
}

TEST_F(Status_writers, Tell_apart_names_that_are_cut_alike) {
    std::string const beginning(k_longest_name, 'n');
    client_connected(7, beginning + "1", "kOn");
    client_connected(8, beginning + "2", "kOn");
    client_connected(9, beginning + "2", "kOn");
    auto const page = read();
    ASSERT_EQ(page.names.size(), 2U);
    EXPECT_EQ(text_of(page.names[0].name), text_of(page.names[1].name));
    for (auto const& client : page.clients) {
        EXPECT_EQ(statectl::record_of(page, client)->connections, client.connection == 7 ? 1U : 2U);
    }
}

TEST_F(Status_writers, Give_a_name_no_record_of_another_one_that_is_cut_alike_when_there_is_no_room) {
    std::string const beginning(k_longest_name, 'n');
    client_connected(0, beginning + "1", "kOn");
    for (int connection = 1; connection < static_cast<int>(k_names); ++connection) {
        client_connected(connection, std::to_string(connection), "kOn");
    }
    client_left(1);
    client_connected(1, beginning + "2", "kOn");
    EXPECT_EQ(read().server.names_untold, 1U);
}

TEST_F(Status_writers, Leave_what_was_late_out_of_the_mean) {
    client_connected(7, "radio", "kOn");
    auto const ask = [](auto const& answer) {
        request_began("kOn", std::chrono::steady_clock::now());
        client_asked(7);
        answer();
    };
    ask([] { client_answered(7, "kOn", 0); });
    auto const total = read().names.at(0).total;
    EXPECT_NE(total, 0U);
    ask([] {
        request_ended(Answer::timed_out);
        client_answered(7, "kOn", 0);
    });
    auto const name = read().names.at(0);
    EXPECT_EQ(name.late, 1U);
    EXPECT_EQ(name.total, total);
    EXPECT_EQ(statectl::mean_of(name), total);
}

TEST_F(Status_writers, Of_a_queue_that_is_longer_than_the_page_count_what_they_do_not_tell) {
    for (std::uint64_t i = 0; i < k_queue + 5; ++i) {
        key_taken(i % 2 + 1);
    }
    for (std::uint64_t i = 0; i < k_queue + 4; ++i) {
        command_consumed();
    }
    EXPECT_EQ(read().driver.waiting, 1U);
    EXPECT_EQ(read().driver.queue[0], 0U);
}

TEST_F(Status_writers, Tell_of_a_client_what_became_of_its_request) {
    auto const deadline = std::chrono::steady_clock::now();
    client_connected(7, "radio", "kOn");
    client_connected(8, "navigation", "kOn");
    client_connected(9, "gone", "kOn");
    EXPECT_EQ(text_of(read().clients.at(0).state), "kOn") << "as it introduced itself";
    request_began("kPrepSD", deadline);
    for (int const connection : {7, 8, 9}) {
        client_asked(connection);
    }
    client_answered(7, "kPrepSD", 0);
    client_left(9);
    auto page = read();
    EXPECT_EQ(page.server.asked, 3U);
    EXPECT_EQ(page.server.unanswered, 2U) << "the one that left is waited for";
    EXPECT_EQ(page.server.clients, 2U);
    request_ended(Answer::timed_out);
    client_answered(8, "kPrepSD", 2);
    client_answered(8, "kPrepSD", 2);  // no request is left that it could belong to
    page = read();
    ASSERT_EQ(page.clients.size(), 2U);
    EXPECT_EQ(page.clients[0].answer, number(Answer::in_time));
    EXPECT_EQ(page.clients[1].answer, number(Answer::late));
    EXPECT_EQ(page.clients[1].status, 2U);
    EXPECT_THAT(kinds(), ElementsAre(number(Event_kind::client_connected), number(Event_kind::client_connected),
                                     number(Event_kind::client_connected), number(Event_kind::client_answered),
                                     number(Event_kind::client_vanished), number(Event_kind::client_timed_out),
                                     number(Event_kind::request_ended), number(Event_kind::client_late)));
    for (auto const& name : page.names) {
        auto const text = text_of(name.name);
        EXPECT_EQ(name.asked, 1U) << text;
        EXPECT_EQ(name.in_time, text == "radio" ? 1U : 0U) << text;
        EXPECT_EQ(name.late, text == "navigation" ? 1U : 0U) << text;
        EXPECT_EQ(name.vanished, text == "gone" ? 1U : 0U) << text;
        EXPECT_EQ(name.connections, text == "gone" ? 0U : 1U) << text;
    }
}

TEST_F(Status_writers, Tell_apart_connections_that_begin_their_search_at_one_record) {
    constexpr int k_other = 7 + static_cast<int>(k_clients);
    client_connected(7, "radio", "kOn");
    client_connected(k_other, "navigation", "kOn");
    client_answered(k_other, "kPrepSD", 0);
    client_left(k_other);
    EXPECT_EQ(text_of(read().clients.at(0).name), "radio");
    EXPECT_EQ(text_of(read().clients.at(0).state), "kOn");
    EXPECT_EQ(text_of(read().events.back().text), "navigation");
}

TEST_F(Status_writers, Tell_whose_process_a_client_is_and_nothing_of_who_had_its_record_before) {
    std::array<int, 2> ends{};
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
    base::Descriptor const first(ends[0]);
    base::Descriptor const second(ends[1]);
    client_connected(first.number(), "radio", "kOn");
    EXPECT_EQ(read().clients.at(0).pid, static_cast<std::uint64_t>(::getpid()));
    EXPECT_EQ(read().clients.at(0).uid, std::uint64_t{::getuid()});
    request_began("kPrepSD", std::chrono::steady_clock::now());
    client_asked(first.number());
    client_answered(first.number(), "kPrepSD", 1);
    client_left(first.number());
    client_connected(first.number(), "radio", "kOn");
    auto const client = read().clients.at(0);
    EXPECT_EQ(client.answer, number(Answer::not_asked));
    EXPECT_EQ(client.status, 0U);
    EXPECT_EQ(client.asked_at, 0U);
    EXPECT_EQ(client.answered_at, 0U);
}

TEST_F(Status_writers, Count_clients_and_names_for_which_there_is_no_room) {
    for (int connection = 0; connection < 1'003; ++connection) {
        client_connected(connection, "client " + std::to_string(connection), "kOn");
    }
    EXPECT_EQ(read().clients.size(), k_clients);
    EXPECT_EQ(read().server.clients_untold, 3U);
    client_left(0);
    client_connected(5'000, "one more name", "kOn");
    client_answered(5'000, "kOn", 0);
    EXPECT_EQ(read().server.names_untold, 1U);
    EXPECT_EQ(read().names.size(), k_names);
}

TEST_F(Status_writers, Tell_what_an_application_holds_as_long_as_it_does) {
    provided(Hold::ecu_alive, {"1", "2"});
    provided(Hold::com_alive, {"1"});
    ecu_requested("2");
    com_requested("1", {0x06, 0x00, 0x01}, 9);
    com_released("1", {0x02});
    cwu_requested("1", 3);
    ecu_released("Standby call");  // no application
    auto page = read();
    ASSERT_EQ(page.instances.size(), 2U);
    EXPECT_EQ(page.instances[0].cab, 0x010004U);
    EXPECT_EQ(page.instances[0].ac, 3U);
    EXPECT_NE(page.instances[0].since[1], 0U);
    EXPECT_NE(page.instances[1].since[0], 0U);
    com_released("1", {0xff, 0xff, 0xff});
    EXPECT_EQ(read().instances[0].ac, 3U) << "it still wakes the car up";
    cwu_released("1");
    ecu_released("2");
    page = read();
    EXPECT_EQ(page.instances[0].since[1] + page.instances[0].since[2] + page.instances[1].since[0], 0U);
    EXPECT_EQ(page.instances[0].ac, 0U);
    EXPECT_EQ(page.instances[0].releases[1], 2U);
}

TEST_F(Status_writers, Tell_the_number_of_an_application_as_long_as_it_holds_something) {
    provided(Hold::com_alive, {"1"});
    provided(Hold::car_wake_up, {"1"});
    auto const& ac = written->instances[0].ac;
    com_requested("1", {1}, 16);
    EXPECT_EQ(own(ac), 16U);
    cwu_requested("1", 17);
    EXPECT_EQ(own(ac), 0U) << "there is none above 16";
    cwu_requested("1", 3);
    com_released("1", {1});
    EXPECT_EQ(own(ac), 3U);
    cwu_released("1");
    EXPECT_EQ(own(ac), 0U);
    com_requested("1", {1}, 2);
    com_released("1", {1});
    EXPECT_EQ(own(ac), 0U);
}

TEST_F(Status_writers, Count_instances_for_which_there_is_no_room) {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < k_instances + 2; ++i) {
        names.push_back(std::to_string(i));
    }
    provided(Hold::ecu_alive, names);
    EXPECT_EQ(read().instances.size(), k_instances);
    EXPECT_EQ(read().services.instances_untold, 2U);
}

TEST_F(Status_writers, Keep_the_newest_events_in_their_order) {
    for (std::uint64_t i = 0; i < 3 * k_events; ++i) {
        key_dropped(i);
        network_state(nullptr, 0);
    }
    auto const events = read().events;
    EXPECT_EQ(events.size(), 2 * (k_events - 1)) << "the oldest of each ring may be overwritten just now";
    EXPECT_TRUE(std::is_sorted(events.begin(), events.end(), [](auto const& a, auto const& b) { return a.at < b.at; }));
    EXPECT_EQ(own(written->events), 6 * k_events);
}

// Without the wake-up the reader sleeps through his whole time as soon as he sleeps at all.
TEST_F(Status_writers, Wake_a_reader_with_the_next_beat_after_an_event) {
    static constexpr auto k_long = std::chrono::seconds(20);
    base::Temporary_directory const directory;
    Page_file const file(directory.path().string() + "/page", {"", 100, 3, false});
    statectl::Page_view const view(directory.path().string() + "/page");
    auto const begin = std::chrono::steady_clock::now();
    for (auto seen = view.events(); seen < 100; ++seen) {
        std::thread reader([&view, seen] { view.await_events(seen, k_long); });
        std::this_thread::yield();
        key_dropped(1);
        beat(false, false);
        reader.join();
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begin, k_long);
}

}  // namespace
}  // namespace status
