#include "tools/page/reasons.h"

#include "status/rows.h"
#include "tools/page/words.h"

#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace statectl {
namespace {

using status::State;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr Number k_s = 1'000'000'000;

template <std::size_t bytes>
void put(status::Text<Number, bytes>& place, std::string const& text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        place.words[i / 8] |= Number{static_cast<std::uint8_t>(text[i])} << 8 * (i % 8);
    }
}

/// A page of a daemon that is well, 100 s after the boot, in a state.
Snapshot page_in(State state) {
    Snapshot page;
    page.now = 100 * k_s;
    page.is_alive = true;
    page.life.number = 1;
    page.life.nm_usage = 1;
    page.life.period_ms = 100;
    page.driver.beat = page.now;
    page.driver.devices = 1;
    page.driver.state = static_cast<Number>(state);
    page.driver.condition = static_cast<Number>(status::condition_of(page.driver.state));
    return page;
}

std::string sentence(std::vector<Reason> const& reasons, std::string const& code) {
    for (auto const& reason : reasons) {
        if (reason.code == code) {
            return reason.text;
        }
    }
    return "no " + code;
}

TEST(Reasons, Have_a_sentence_for_each_state) {
    for (Number state = 0; state < 8; ++state) {
        auto const reasons = reasons_of(page_in(static_cast<State>(state)));
        ASSERT_EQ(reasons.size(), 1U) << state;
        EXPECT_NE(reasons[0].code, "unknown") << state;
    }
    EXPECT_EQ(reasons_of(page_in(static_cast<State>(8)))[0].code, "unknown") << "a state that no daemon is ever in";
}

TEST(Reasons, Of_the_network_are_its_reports) {
    auto page = page_in(State::nm_controlled);
    EXPECT_THAT(sentence(reasons_of(page), "network-silent"), HasSubstr("not reported"));
    page.network.reports = 2;
    page.network.reported_at = 98 * k_s;
    page.network.state.length = 3;
    page.network.state.bytes.words[0] = 0x010007;
    EXPECT_EQ(sentence(reasons_of(page), "network-needed"),
              "the network is needed by CAB 0, CAB 1, CAB 2, ECU alive (bits 07 00 01), as reported 2.0 s ago");
    page.network.ecu_state = 1;
    EXPECT_EQ(sentence(reasons_of(page), "network-at-rest-once"),
              "the network has reported rest once, 2.0 s ago; the ECU may sleep when it does so again");
    page.network.reported_at = 69 * k_s;
    EXPECT_EQ(
        sentence(reasons_of(page), "network-at-rest-once"),
        "the network has reported rest once, 31.0 s ago; the ECU may sleep when it does so again, which a network "
        "manager that has gone never does (ap_statectl services)");
}

TEST(Reasons, Of_a_suspend_are_the_clients_that_owe_an_answer) {
    auto page = page_in(State::preparing);
    page.driver.since = 90 * k_s;
    EXPECT_EQ(sentence(reasons_of(page), "next-step"), "nobody has been asked yet, and the next step follows");
    page.driver.group = static_cast<Number>(status::Group::dem);
    page.driver.group_at = 80 * k_s;
    EXPECT_EQ(sentence(reasons_of(page), "next-step"), "nobody has been asked yet, and the next step follows")
        << "the group is that of the suspend before";
    page.driver.group_at = page.driver.since;
    EXPECT_EQ(sentence(reasons_of(page), "next-step"),
              "all of the diagnostic events have answered or had their time, and the next step follows");
    page.server.in_progress = 1;
    page.server.deadline = 106 * k_s + k_s * 8 / 10;
    page.server.unanswered = 1;
    put(page.server.mode, "kPrepSD");
    status::Client<Number> radio{};
    radio.answer = static_cast<Number>(status::Answer::open);
    radio.asked_at = 97 * k_s - k_s / 5;
    put(radio.name, "radio");
    page.clients.push_back(radio);
    status::Name<Number> name{};
    name.asked = 1;
    put(name.name, "radio");
    page.names.push_back(name);
    EXPECT_EQ(sentence(reasons_of(page), "client-open"),
              "\"radio\" has 6.8 s left to answer kPrepSD (asked 3.2 s ago; was never asked before)");
    page.names[0].asked = 2;
    EXPECT_THAT(sentence(reasons_of(page), "client-open"), HasSubstr("; of 1 answer before, none came in time)"));
    page.names[0].asked = 4;
    page.names[0].timed_out = 3;
    page.names[0].late = 1;
    EXPECT_THAT(sentence(reasons_of(page), "client-open"), HasSubstr("; of 3 answers before, none came in time)"));
    page.names[0].in_time = 1;
    page.names[0].failed = 1;
    page.names[0].total = 2 * k_s / 5;
    EXPECT_THAT(sentence(reasons_of(page), "client-open"),
                HasSubstr("; of 3 answers before, 2 came in time, after 0.2 s on average)"));
    page.server.unanswered = 3;
    EXPECT_EQ(sentence(reasons_of(page), "client-vanished"),
              "2 of those that were asked left without an answer; their time is over in 6.8 s");
    page.clients.clear();
    page.server.unanswered = 0;
    page.server.clients_untold = 1;
    EXPECT_EQ(sentence(reasons_of(page), "next-step"),
              "the page has no room for all clients: one that it lacks may owe an answer");
    page.server.in_progress = 0;
    EXPECT_THAT(sentence(reasons_of(page), "next-step"), HasSubstr("have answered or had their time"));
}

TEST(Reasons, Of_a_command_that_waits_are_told_beside_those_of_the_state) {
    auto page = page_in(State::running);
    page.driver.blocked = static_cast<Number>(status::Blocked::by_state);
    page.driver.waiting = 3;
    page.driver.queue[0] = 1;
    page.driver.taken_at[0] = 99 * k_s;
    EXPECT_EQ(sentence(reasons_of(page), "command-blocked"),
              "the oldest command is \"Run\" (1.0 s ago), which Running never takes; 2 commands wait behind it; only "
              "the power key removes it");
    EXPECT_EQ(reasons_of(page).size(), 1U) << "there is a command, so that none is not what is missing";
    page = page_in(State::nm_controlled);
    page.driver.blocked = static_cast<Number>(status::Blocked::by_state);
    page.driver.waiting = 1;
    page.driver.queue[0] = 3;
    page.driver.taken_at[0] = 99 * k_s;
    EXPECT_EQ(reasons_of(page)[0].code, "network-silent");
    EXPECT_EQ(sentence(reasons_of(page), "command-blocked"),
              "the oldest command is \"NMControlledPrepareSD\" (1.0 s ago), which NM Controlled never takes; the next "
              "transition uses it up");
}

TEST(Reasons, Of_keys_that_have_led_to_nothing_are_told_for_five_minutes) {
    auto page = page_in(State::post_run);
    page.driver.last_key_at = 40 * k_s;
    page.driver.last_dropped = 4;
    page.driver.last_dropped_at = 90 * k_s;
    page.driver.last_swallowed = 1;
    page.driver.last_swallowed_at = 95 * k_s;
    page.driver.swallowed_from = 2;
    page.driver.swallowed_row = 2;
    page.driver.last_cleared = 2;
    page.driver.last_cleared_at = 97 * k_s;
    auto const reasons = reasons_of(page);
    EXPECT_EQ(sentence(reasons, "key-dropped"),
              "\"PrepareSD\" was dropped 10.0 s ago: the key taken before it is the same");
    EXPECT_EQ(sentence(reasons, "key-swallowed"),
              "\"Run\" was used up 5.0 s ago by the transition out of NM Controlled, which had another cause: the "
              "network was asleep, and applications kept the ECU alive");
    EXPECT_EQ(sentence(reasons, "key-cleared"),
              "\"NmControlled\" was thrown away 3.0 s ago with all that waited: the power key overtakes");
    page.now = 396 * k_s;
    EXPECT_EQ(sentence(reasons_of(page), "key-dropped"), "no key-dropped");
    EXPECT_EQ(sentence(reasons_of(page), "key-swallowed"), "no key-swallowed");
    EXPECT_NE(sentence(reasons_of(page), "key-cleared"), "no key-cleared");
    page.driver.last_key_at = page.driver.last_dropped_at + k_s;
    page.now = 100 * k_s;
    EXPECT_EQ(sentence(reasons_of(page), "key-dropped"), "no key-dropped") << "another one was taken since";
}

TEST(Troubles, Are_none_of_a_daemon_that_is_well) {
    EXPECT_THAT(troubles_of(page_in(State::running)), IsEmpty());
}

TEST(Troubles, Are_told_each_by_its_sentence) {
    struct Trouble {
        std::string code;
        std::function<void(Snapshot& page)> make;
        std::string text;
    };
    for (auto const& trouble : std::vector<Trouble>{
             {"not-running",
              [](Snapshot& page) {
                  page.is_alive = false;
                  page.silent = 12 * k_s;
              },
              "without a farewell 12.0 s ago"},
             {"not-running",
              [](Snapshot& page) {
                  page.is_alive = false;
                  page.driver.ended = page.now;
                  page.silent = 3 * k_s;
              },
              "ended in order 3.0 s ago"},
             {"not-running",
              [](Snapshot& page) {
                  page.is_alive = false;
                  page.is_foreign = true;
              },
              "the page is from another boot or machine"},
             {"half-written", [](Snapshot& page) { page.is_half_written = true; }, "half-written"},
             {"no-beat", [](Snapshot& page) { page.driver.beat = 90 * k_s; }, "no cycle has begun for 10.0 s"},
             {"no-beat",
              [](Snapshot& page) {
                  page.driver.beat = 0;
                  page.life.started = 97 * k_s;
              },
              "no cycle has begun for 3.0 s"},
             {"no-device", [](Snapshot& page) { page.driver.devices = 0; }, "no command arrives"},
             {"device-lost",
              [](Snapshot& page) {
                  page.driver.devices_found = 2;
                  page.driver.devices_lost = 1;
                  page.driver.device_lost_at = 97 * k_s;
              },
              "1 of 2 input devices failed, the last one 3.0 s ago"},
             {"word-failed", [](Snapshot& page) { page.driver.word_failed = 1; }, "could not be written"},
             {"word-failed",
              [](Snapshot& page) { page.driver.word_failed = static_cast<Number>(status::Word_fate::no_file); },
              "could not be opened at the start, and is tried again by the daemon's next start"},
             {"machine-state-failed", [](Snapshot& page) { page.driver.machine_state_failed = 1; }, "did not set"},
             {"calls-failed",
              [](Snapshot& page) {
                  page.counters.failed_calls = {2, 0, 1};
                  page.counters.call_failed_at = 96 * k_s;
              },
              "failed: RequestNetwork 2 times and SetUserData once, the last 4.0 s ago"},
             {"server-failed", [](Snapshot& page) { page.server.failures = 1; }, "server failed once"},
             {"supervision-stopped", [](Snapshot& page) { page.driver.supervision_stopped = 97 * k_s; },
              "a report to the watchdog failed 3.0 s ago"},
             {"log-lost",
              [](Snapshot& page) {
                  page.driver.log_lost = 7;
                  page.driver.log_lost_at = 90 * k_s;
              },
              "lost 7 messages, the last 10.0 s ago"},
             {"log-lost",
              [](Snapshot& page) {
                  page.driver.log_lost = 1;
                  page.driver.log_lost_at = 90 * k_s;
              },
              "lost 1 message, 10.0 s ago"},
             {"restart-failed", [](Snapshot& page) { page.counters.restarts_failed = 1; }, "not be written once"},
             {"restarted",
              [](Snapshot& page) {
                  page.life.number = 3;
                  page.life.started = 80 * k_s;
              },
              "restarted 2 times since the boot, the last time 20.0 s ago"},
         }) {
        auto page = page_in(State::running);
        trouble.make(page);
        ASSERT_EQ(troubles_of(page).size(), 1U) << trouble.code;
        EXPECT_THAT(sentence(troubles_of(page), trouble.code), HasSubstr(trouble.text));
    }
}

TEST(Words, Of_spans_are_short) {
    for (auto const& [span, text] : {std::pair<Number, char const*>{0, "0.0 s"},
                                     {12'400'000'000, "12.4 s"},
                                     {59'999'999'999, "59.9 s"},
                                     {60 * k_s, "1 min 0 s"},
                                     {3'599 * k_s, "59 min 59 s"},
                                     {7'800 * k_s, "2 h 10 min"}}) {
        EXPECT_EQ(span_text(span), text);
    }
    EXPECT_EQ(span_text(5, 3), "0.0 s");
}

TEST(Words, Show_no_bytes_that_a_terminal_would_obey) {
    for (auto const& [text, plain] : {std::pair<std::string, std::string>{"a\x1b[2Jb\n\x7f", "a?[2Jb??"},
                                      {"\u0080\u009b2J\u009f", "??2J?"},
                                      {"\u202a\u202e\u2066\u2069", "????"},
                                      {"K\u00fcche \u00a0 \u2029 \u202f \u2065 \u206a \U0001f697",
                                       "K\u00fcche \u00a0 \u2029 \u202f \u2065 \u206a \U0001f697"},
                                      {"\x9b"
                                       "2J \xff \xe2\x80 \xc2",
                                       "?2J ? ?? ?"},
                                      {"\xc1\x9b \xe0\x82\x9b \xf4\x90\x80\x80", "?? ??? ????"}}) {
        EXPECT_EQ(shown(text), plain);
    }
    EXPECT_EQ(quoted("a\x1b"), "\"a?\"");
}

}  // namespace
}  // namespace statectl
