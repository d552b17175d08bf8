// What watches over the lives of the whole machine can find something: each judge is told what a machine that breaks
// its rule would show, beside the same without that.

#include "asking.h"
#include "holds.h"
#include "invariants.h"
#include "losses.h"
#include "rest.h"
#include "way.h"
#include "words.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <vector>

#include <gmock/gmock.h>

namespace soak {
namespace {

using bench::rules::State;
using testing::HasSubstr;

Event log(std::int64_t ms, std::string const& text, int level = 4) {
    return {ms * k_ns_per_ms, Kind::log, text, level, "DFLT", "STMG"};
}

Event word(std::int64_t ms, std::string const& text) {
    return {ms * k_ns_per_ms, Kind::state_word, text};
}

Event key(std::string const& name) {
    return {0, Kind::key, name};
}

Event beat(std::int64_t ms) {
    return {ms * k_ns_per_ms, Kind::watchdog, ""};
}

Event act(std::string const& what, std::string const& of = "", int number = 0) {
    return bench::vehicle::event_of(0, Kind::client, {"radio", what, of, number});
}

Event went(std::string const& from, std::string const& to) {
    return log(0, "AP_StateManger transition from " + from + "  to  " + to);
}

constexpr char const* k_asks_applications = "Requesting kPrepSD mode for client applications";
constexpr char const* k_asks_dcm = "Requesting kPrepSD mode for DCM";
constexpr char const* k_sends = "sending state change request to clients. new state = kPrepSD";
constexpr char const* k_in_time = "Received application client completion notification for kPrepSD . Status: 0";
constexpr char const* k_late = "Received application client completion notification for kPrepSD . Status: 1";
constexpr char const* k_cycle = "Starting AP_StateManager run_cyclic_task";

struct Judged {
    char const* name;
    std::function<std::unique_ptr<Invariant>(Circumstances const&, Holds const&)> judge;
    std::vector<Event> good;
    std::vector<Event> bad;
    char const* finding;
};

class Judges : public testing::TestWithParam<Judged> {};

std::string found(Judged const& judged, std::vector<Event> const& events) {
    Circumstances circumstances;
    circumstances.application_s = circumstances.diagnosis_s = 10;
    Holds const holds;
    auto const judge = judged.judge(circumstances, holds);
    std::string first;
    for (auto const& event : events) {
        judge->hear(event, [&first](std::string const& what) { first = first.empty() ? what : first; });
    }
    return first.empty() ? judge->missing_at_rest() : first;
}

TEST_P(Judges, Find_what_breaks_their_rule_and_nothing_else) {
    EXPECT_EQ(found(GetParam(), GetParam().good), "") << GetParam().name;
    EXPECT_THAT(found(GetParam(), GetParam().bad), HasSubstr(GetParam().finding)) << GetParam().name;
}

auto words(Circumstances const& /*circumstances*/, Holds const& /*holds*/) {
    return std::make_unique<Words>();
}

template <class Judge>
std::unique_ptr<Invariant> of(Circumstances const& circumstances, Holds const& /*holds*/) {
    return std::make_unique<Judge>(circumstances);
}

std::unique_ptr<Invariant> way(Circumstances const& circumstances, Holds const& holds) {
    return std::make_unique<Way>(circumstances, holds);
}

std::vector<Event> const k_started{word(0, "startingup"), went("Starting up", "Running"), word(0, "running")};

std::vector<Event> with(std::vector<Event> events, std::vector<Event> const& more) {
    events.insert(events.end(), more.begin(), more.end());
    return events;
}

std::vector<Event> const k_connected{log(0, "client connected: name = radio , current state = kOn"), act("connected")};
std::vector<Event> const k_asked = with(k_connected, {log(1'000, k_asks_applications), log(1'000, k_sends)});
std::vector<Event> const k_suspending =
    with(k_started, {key("p"), log(0, "New command received PrepareSD"), went("Running", "Preparing"),
                     word(0, "preparing"), log(0, "Starting standby sequence")});
std::vector<Event> const k_suspended = with(
    k_suspending, {log(0, k_asks_dcm), log(0, "Received DCM client completion notification for kPrepSD . Status: 0"),
                   log(0, k_asks_applications), log(0, k_in_time), log(0, "Requesting kPrepSD mode for DEM"),
                   log(0, "Received DEM client completion notification for kPrepSD . Status: 0"),
                   went("Preparing", "PreparedSD"), word(0, "prepared4sd")});

INSTANTIATE_TEST_SUITE_P(
    Each, Judges,
    testing::Values(
        Judged{"a word out of order",
               words,
               {word(0, "startingup"), word(1, "running")},
               {word(0, "startingup"), word(1, "postrun")},
               "the word postrun after startingup"},
        Judged{"a first word", words, {word(0, "startingup")}, {word(0, "running")}, "the word running after nothing"},
        Judged{"a suspend that is too long",
               of<Budget>,
               {word(0, "preparing"), word(32'000, "prepared4sd")},
               {word(0, "preparing"), word(34'000, "prepared4sd")},
               "preparing took 34000 ms"},
        Judged{"a resume that is too long",
               of<Budget>,
               {word(0, "resuming"), word(42'000, "running")},
               {word(0, "resuming"), word(44'000, "running")},
               "resuming took 44000 ms"},
        Judged{"beats that end",
               of<Beats>,
               {beat(1'000), beat(4'000)},
               {beat(1'000), log(4'200, k_cycle)},
               "no sign of life for 3200 ms"},
        Judged{"an error without a reason",
               of<Complaints>,
               {log(0, "Could not find NetworkState service", 3)},
               {log(0, "Client radio is late", 3)},
               "nothing explains: Client radio is late"},
        Judged{"a command that nobody pressed", way, k_started, with(k_started, {log(0, "New command received Run")}),
               "the command Run was taken, not none"},
        Judged{"a command that is not taken", way, with(k_started, {key("r"), log(0, "New command received Run")}),
               with(k_started, {key("r")}), "the command Run was not taken"},
        Judged{"a transition of another state", way, k_started, with(k_started, {went("Post Run", "Preparing")}),
               "a transition of another state than Running"},
        Judged{"a transition without a row", way, k_started, with(k_started, {went("Running", "Preparing")}),
               "no row leads from Running to Preparing"},
        Judged{"a word of another state",
               way,
               k_started,
               {word(0, "startingup"), went("Starting up", "Running"), word(0, "postrun")},
               "the word postrun was written for running"},
        Judged{"a word that is not written",
               way,
               k_started,
               {word(0, "startingup"), went("Starting up", "Running")},
               "the word running"},
        Judged{"a transition that does not come", way, k_started,
               with(k_started, {key("p"), log(0, "New command received PrepareSD")}), "the transition of"},
        Judged{"a group out of its turn", way, k_suspended, with(k_suspending, {log(0, k_asks_applications)}),
               "this group is not next"},
        Judged{"a group beside another", way, k_suspended,
               with(k_suspending, {log(0, k_asks_dcm), log(0, k_asks_applications)}),
               "a group is asked while another request waits"},
        Judged{"a group that was not asked", way, k_suspended, with(k_started, {log(0, k_in_time)}),
               "a group has answered that was not asked"},
        Judged{"a client that is asked twice", of<Asking>,
               with(k_asked, {act("asked", "kPrepSD", 1), log(1'010, k_in_time)}),
               with(k_asked, {act("asked", "kPrepSD", 1), act("asked", "kPrepSD", 1)}), "with the number 1, not 2"},
        Judged{"a client that is not asked", of<Asking>,
               with(k_asked, {act("asked", "kPrepSD", 1), log(1'010, k_in_time)}),
               with(k_asked, {log(1'010, k_in_time)}), "radio was asked 0 times, not 1 times"},
        Judged{"a client that is asked for another state", of<Asking>,
               with(k_asked, {act("asked", "kPrepSD", 1), log(1'010, k_in_time)}),
               with(k_asked, {act("asked", "kOn", 1), log(1'010, k_in_time)}), "or for other states"},
        Judged{"a group that has too little time", of<Asking>,
               with(k_asked, {act("asked", "kPrepSD", 1), log(11'000, k_late)}),
               with(k_asked, {act("asked", "kPrepSD", 1), log(10'900, k_late)}),
               "client applications had 9900 ms only"},
        Judged{"a group that has too much time", of<Asking>,
               with(k_asked, {act("asked", "kPrepSD", 1), log(13'900, k_late)}),
               with(k_asked, {act("asked", "kPrepSD", 1), log(14'100, k_late)}), "client applications had 13100 ms"},
        Judged{"a group whose answers never come", of<Asking>,
               with(k_asked, {act("asked", "kPrepSD", 1), log(1'010, k_in_time)}),
               with(k_asked, {act("asked", "kPrepSD", 1)}), "the answers of client applications"}),
    [](auto const& judged) {
        std::string name = judged.param.name;
        std::replace(name.begin(), name.end(), ' ', '_');
        return name;
    });

TEST(A_judge, Forgives_what_stood_still) {
    Circumstances circumstances;
    circumstances.stalls = {{1 * k_ns_per_s, 5 * k_ns_per_s}};
    Beats beats(circumstances);
    std::string first;
    for (auto const& event : {beat(1'000), beat(6'000), beat(10'000)}) {
        beats.hear(event, [&first](std::string const& what) { first = first.empty() ? what : first; });
    }
    EXPECT_THAT(first, HasSubstr("for 4000 ms"));
}

TEST(The_network_at_rest, Is_asked_for_what_is_held_and_nothing_else) {
    Holds holds;
    holds.hear("1", {{"do", "request"}, {"what", "ecu_alive"}});
    holds.hear("1", {{"do", "request"}, {"what", "com_alive"}, {"bits", "00 02"}, {"ac", 9}});
    using Bytes = std::vector<std::uint8_t>;
    Bytes const held{1, 2, 1, 0, 0, 0};
    Bytes const data{0x80, 0, 1, 0, 2, 0};
    Bytes const none(6);
    Circumstances const circumstances;
    Losses losses;
    auto const fault = [&](Bytes const& requests, Bytes const& user_data, State state) {
        return fault_of({requests, user_data}, state, circumstances, holds, losses, true);
    };
    EXPECT_EQ(fault(held, data, State::running), "");
    EXPECT_EQ(fault({0, 2, 1, 0, 0, 0}, data, State::nm_controlled), "");
    EXPECT_EQ(fault({0, 0, 1, 0, 0, 0}, none, State::prepared_sd), "");
    for (auto const& wrong : {Bytes{0, 2, 1, 0, 0, 0}, Bytes{1, 0, 1, 0, 0, 0}, Bytes{1, 2, 0, 0, 0, 0},
                              Bytes{1, 6, 1, 0, 0, 0}, Bytes{1, 2, 1, 0, 0, 1}}) {
        EXPECT_THAT(fault(wrong, data, State::running), HasSubstr("the network is asked for"));
    }
    EXPECT_THAT(fault({0, 2, 0, 0, 0, 0}, none, State::prepared_sd), HasSubstr("the network is asked for"));
    EXPECT_THAT(fault(held, {0x80, 0, 1, 0, 2, 4}, State::running), HasSubstr("the user data is"));
    EXPECT_THAT(fault({0, 0, 1, 0, 0, 0}, data, State::prepared_sd), HasSubstr("the user data is"));

    losses.note();
    EXPECT_EQ(fault(none, none, State::running), "");
    losses.hear_state_word("resuming");
    losses.hear_state_word("running");
    EXPECT_THAT(fault(none, data, State::running), HasSubstr("the network is asked for"));
    EXPECT_EQ(fault({1, 6, 1, 0, 0, 0}, data, State::running), "");
}

TEST(What_is_held, Is_what_was_requested_and_not_released) {
    Holds holds;
    auto const does = [&](char const* what, char const* of, char const* bits = "", unsigned number = 0) {
        holds.hear("1", {{"do", what}, {"what", of}, {"bits", bits}, {"ac", number}});
    };
    EXPECT_FALSE(holds.keep_ecu_alive() || holds.keep_com_alive() || holds.have_kept_ecu_alive());
    does("request", "ecu_alive");
    does("release", "ecu_alive");
    EXPECT_TRUE(!holds.keep_ecu_alive() && holds.have_kept_ecu_alive());
    does("request", "com_alive", "06", 3);
    does("request", "cwu", "", 4);
    does("release", "com_alive", "04");
    EXPECT_EQ(holds.requests(), (Holds::Bytes{2, 0, 0, 0, 0, 0}));
    EXPECT_EQ(holds.user_data(), (Holds::Bytes{0xC0, 8, 0, 2, 0, 0}));
    does("release", "cwu");
    EXPECT_EQ(holds.user_data(), (Holds::Bytes{0x80, 8, 0, 2, 0, 0}));
    does("release", "com_alive", "02");
    EXPECT_EQ(holds.user_data(), (Holds::Bytes{0x80, 0, 0, 0, 0, 0}));
    EXPECT_FALSE(holds.keep_com_alive());
}

TEST(A_daemon, That_grows_is_found) {
    Used const first{20, 9, 4'000};
    EXPECT_EQ(growth(first, {21, 9, 4'500}), "");
    EXPECT_THAT(growth(first, {22, 9, 4'000}), HasSubstr("a descriptor: there are 22, first were 20"));
    EXPECT_THAT(growth(first, {20, 10, 4'000}), HasSubstr("a thread: there are 10, first were 9"));
    EXPECT_THAT(growth(first, {20, 9, 2'000'000}), HasSubstr("memory: there are 2000000 KiB, first were 4000"));
}

}  // namespace
}  // namespace soak
