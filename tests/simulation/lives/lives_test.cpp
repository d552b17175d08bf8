// Some lives in each run of the tests, and that what watches over them can find something.

#include "held_rules.h"
#include "life_played.h"
#include "simulation/configuration.h"
#include "situations.h"

#include <algorithm>

#include <gmock/gmock.h>

namespace lives {
namespace {

using namespace std::chrono_literals;
using simulation::Entry;
using simulation::Kind;
using simulation::Timeline;
using testing::HasSubstr;

TEST(Lives_of_the_machine, Break_no_rule) {
    Coverage coverage;
    for (std::uint64_t seed = 1; seed <= LIVES; ++seed) {
        auto const life = played(drawn_life(seed), coverage);
        ASSERT_EQ(life.finding, "") << "seed " << seed << '\n' << text_of(drawn_life(seed));
        ASSERT_GT(life.steps, 0U);
    }
    EXPECT_EQ(coverage.impossible(), "");
}

// Keys that wait differ from their neighbours, and the notifier's table leads from one group to the next.
TEST(Situations_that_there_can_be, Are_what_the_tables_lead_to) {
    auto const& situations = possible().situations;
    auto const has = [&](char const* text) {
        return std::any_of(situations.begin(), situations.end(),
                           [&](Situation const& one) { return text_of(one) == text; });
    };
    EXPECT_TRUE(has("Preparing: no command, network management, found, clients asked, DCM asked kPrepSD"));
    EXPECT_TRUE(has("Resuming: Shutdown, network management, found, clients asked, DEM asked kPrepSD"));
    EXPECT_FALSE(has("Preparing: no command, network management, found, clients asked, DEM asked kOn"));
    EXPECT_FALSE(has("Resuming: Run, network management, found, clients asked, DEM asked kOn"));
    EXPECT_FALSE(has("PreparedSD: no command, network management, found, clients asked, DCM asked kPrepSD"));
}

TEST(What_lives_came_by, Names_what_is_rare_and_what_is_missing) {
    Coverage coverage;
    auto const& rows = bench::rules::rows();
    auto const leads_to = [&](auto from, auto to) -> auto const& {
        return *std::find_if(rows.begin(), rows.end(),
                             [&](auto const& row) { return row.from == from && row.to == to; });
    };
    using bench::rules::State;
    auto const& first = leads_to(State::starting_up, State::running);
    auto const& second = leads_to(State::running, State::preparing);
    coverage.decided(first, 7);
    coverage.decided(second, 7);
    coverage.decided(second, 8);
    coverage.decided(second, 8);
    auto const pair = "  " + name(first) + " -> " + name(second);
    EXPECT_THAT(coverage.impossible(), HasSubstr("Running: no command, "));
    EXPECT_THAT(coverage.text(), HasSubstr("rarely one after the other:\n" + pair + ": 1\n"));
    EXPECT_THAT(coverage.text(), HasSubstr("never one after the other:\n"));
    EXPECT_THAT(coverage.text(), HasSubstr("rows that never decided:"));
}

TEST(What_lives_came_by, Counts_what_was_seen_of_what_there_can_be) {
    Coverage coverage;
    for (auto const& [state, number] : possible().situations) {
        if (state == bench::rules::State::starting_up) {
            coverage.decided(bench::rules::rows().front(), number);
        }
    }
    EXPECT_EQ(coverage.impossible(), "");
    EXPECT_THAT(coverage.text(), HasSubstr("  Starting up: 120 of 120, of which 120 once\n"));
    EXPECT_THAT(coverage.text(), HasSubstr("  Running: 0 of 108, "));
    EXPECT_THAT(coverage.text(), HasSubstr("situations that were never seen:\n  Running: "));
}

TEST(Lives_of_the_machine, Are_the_same_each_time) {
    Coverage first;
    Coverage second;
    for (std::uint64_t const seed : {3U, 77U}) {
        EXPECT_EQ(drawn_life(seed), drawn_life(seed));
        EXPECT_EQ(played(drawn_life(seed), first).steps, played(drawn_life(seed), second).steps);
    }
    EXPECT_EQ(first.text(), second.text());
    EXPECT_NE(drawn_life(3), drawn_life(77));
}

/// FNV-1a.
std::uint64_t hash_of(std::string const& text) {
    std::uint64_t hash = 0xCBF29CE484222325U;
    for (char const character : text) {
        hash = (hash ^ static_cast<unsigned char>(character)) * 0x100000001B3U;
    }
    return hash;
}

// A seed that somebody else tells of must give their life. Whoever changes what is drawn changes this number.
TEST(Lives_of_the_machine, Are_drawn_alike_by_each_compiler) {
    std::string scripts;
    for (std::uint64_t seed = 1; seed <= 200; ++seed) {
        scripts += text_of(drawn_life(seed));
    }
    EXPECT_EQ(hash_of(scripts), 15231416992577358706U);
}

TEST(Lives_of_the_machine, Tell_an_exception_as_what_they_have_found) {
    Coverage unused;
    EXPECT_THAT(played({"at 1s key r", "config KnockOutTimer \"x\""}, unused).finding, HasSubstr("exception"));
    EXPECT_THAT(played({"at 1s key x"}, unused).finding, HasSubstr("there is no key"));
}

/// What a machine that breaks a rule would show, after its start in Starting up.
struct Broken {
    char const* finding;
    simulation::Timeline entries;
};

class Rules_that_are_broken : public testing::TestWithParam<Broken> {};

TEST_P(Rules_that_are_broken, Are_found) {
    Coverage unused;
    Held_rules rules({}, unused);
    rules.take({0s, Kind::state, "Starting up", "the start"});
    rules.take({0s, Kind::word, "written", "startingup"});
    rules.take({0s, Kind::log, "info", "Initializing user data"});
    ASSERT_EQ(rules.finding(), "");

    for (auto const& entry : GetParam().entries) {
        rules.take(entry);
    }

    EXPECT_THAT(rules.finding(), HasSubstr(GetParam().finding));
}

Entry const k_running{1s, Kind::state, "Running", ""};
Entry const k_word{1s, Kind::word, "written", "running"};
Entry const k_granted{1s, Kind::machine_state, "granted", "Running"};
Entry const k_p{2s, Kind::key, "", "p"};
Entry const k_preparing{2s, Kind::state, "Preparing", ""};
Entry const k_word_of_preparing{2s, Kind::word, "written", "preparing"};
Entry const k_dcm_requested{2s, Kind::log, "info", "Requesting  kPrepSD  mode for DCM"};

INSTANTIATE_TEST_SUITE_P(
    Each, Rules_that_are_broken,
    testing::Values(
        Broken{"the machine went to Preparing", {{1s, Kind::state, "Preparing", ""}}},
        Broken{"once more", {{1s, Kind::word, "written", "startingup"}}},
        Broken{"the word postrun", {k_running, {1s, Kind::word, "written", "postrun"}}},
        Broken{"the machine state before the word", {k_running, k_granted}},
        Broken{"its word was not written", {k_running, k_p, k_preparing}},
        Broken{"the network was told before the word", {k_running, {1s, Kind::request, "user data", "80"}}},
        Broken{"the machine state Shutdown was asked for",
               {k_running, k_word, {1s, Kind::machine_state, "granted", "Shutdown"}}},
        Broken{"its machine state was not asked for", {k_running, k_word, k_p, k_preparing}},
        Broken{"it is not its turn",
               {{1s, Kind::client, "radio", "connected in kOn"}, {1s, Kind::client, "radio", "asked kOn"}}},
        Broken{"a sequence begins with",
               {k_running,
                k_word,
                k_granted,
                k_p,
                k_preparing,
                k_word_of_preparing,
                {2s, Kind::log, "info", "Requesting  kPrepSD  mode for DEM"}}},
        Broken{"a group is asked while",
               {k_running,
                k_word,
                k_granted,
                k_p,
                k_preparing,
                k_word_of_preparing,
                k_dcm_requested,
                {2s, Kind::log, "info", "Requesting  kPrepSD  mode for DEM"}}},
        Broken{"a group has answered that was not asked",
               {{1s, Kind::log, "info", "Received DCM client completion notification for  kPrepSD . Status:  0"}}},
        Broken{"was told", {{1s, Kind::power_off, "", "poweroff 5"}}},
        Broken{"the daemon has ended, and nobody",
               {k_running, k_word, k_granted, {3s, Kind::end, "", "the daemon has ended"}}},
        Broken{"something after the end", {{1s, Kind::end, "", ""}, {1s, Kind::word, "written", "startingup"}}}));

TEST(A_driver, That_does_not_report_that_it_is_alive_is_found) {
    Coverage unused;
    Held_rules rules({}, unused);
    rules.take({0s, Kind::state, "Starting up", "the start"});
    rules.take({0s, Kind::word, "written", "startingup"});
    simulation::Life life({simulation::configuration_of({}, std::nullopt)});
    rules.wait(life);
    EXPECT_THAT(rules.finding(), HasSubstr("has reported 0 times in 1 cycles that it is alive"));
}

TEST(A_sequence, That_begins_where_none_may_is_found) {
    std::string finding;
    Terms const terms;
    Held_clients clients(terms, [&](std::string const& what) { finding = what; });
    clients.begin_suspend();
    clients.take_log(1s, "Requesting  kPrepSD  mode for DCM", false);
    EXPECT_THAT(finding, HasSubstr("a sequence begins: "));
}

TEST(A_suspend, In_which_the_network_is_still_requested_is_found) {
    std::string finding;
    Terms const terms;
    Held_network network(terms, [&](std::string const& what) { finding += what + '\n'; });
    network.take_log("Initializing user data");
    network.begin_suspend();
    simulation::Life life({simulation::configuration_of(
        simulation::parse_script("config DefautNMRequestPattern [0, 16, 0, 0, 0, 0]"), std::nullopt)});
    life.run(1s);
    network.check(life);
    EXPECT_THAT(finding, HasSubstr("the user data is"));
    EXPECT_THAT(finding, HasSubstr("requested during a suspend"));
}

// A key ends the driver's wait in the moment in which two clients come: one is let in before the request, one after it.
TEST(A_client, That_comes_in_the_moment_of_a_request_may_be_asked_or_not) {
    Coverage unused;
    EXPECT_EQ(played({"at 1700ms key s", "at 5596ms network sleeps", "at 7981ms key r",
                      "at 8063ms client radio connects crashes after 7153ms", "at 8063ms client late8 connects silent",
                      "at 8063ms key p"},
                     unused)
                  .finding,
              "");
}

Planted without(Kind kind, std::string const& what) {
    return [=](Entry const& entry) {
        bool const is_it = entry.kind == kind && (entry.who + ' ' + entry.what).find(what) != std::string::npos;
        return is_it ? Timeline{} : Timeline{entry};
    };
}

Planted with(Kind kind, std::string const& what, Entry const& more) {
    return [=](Entry const& entry) {
        bool const is_it = entry.kind == kind && (entry.who + ' ' + entry.what).find(what) != std::string::npos;
        return is_it ? Timeline{entry, {entry.at, more.kind, more.who, more.what}} : Timeline{entry};
    };
}

Timeline nothing_but_the_start(Entry const& entry) {
    bool const is_start = entry.what == "the start" || entry.what == "startingup" || entry.kind == Kind::end;
    return is_start ? Timeline{entry} : Timeline{};
}

Planted an_hour_later(Kind kind, std::string const& who) {
    return [=](Entry const& entry) {
        auto const late = entry.kind == kind && entry.who == who && entry.at > 2s ? entry.at + 1h : entry.at;
        return Timeline{{late, entry.kind, entry.who, entry.what}};
    };
}

Planted with_the_key(std::string const& key) {
    return [=](Entry const& entry) {
        return Timeline{entry.kind == Kind::key ? Entry{entry.at, Kind::key, "", key} : entry};
    };
}

// Nor of what comes behind them.
Timeline without_the_log_of_applications(Entry const& entry) {
    bool const is_it = entry.what.find("application client completion") != std::string::npos ||
                       entry.what.find("mode for DEM") != std::string::npos;
    return entry.kind == Kind::log && is_it ? Timeline{} : Timeline{entry};
}

/// A life that is played as it is breaks no rule; with what is planted into what is told of it, it does.
struct Spoilt {
    char const* finding;
    Lines lines;
    Planted planted;
};

class Lives_that_are_spoilt : public testing::TestWithParam<Spoilt> {};

TEST_P(Lives_that_are_spoilt, Are_found) {
    Coverage unused;
    auto const& [finding, lines, planted] = GetParam();
    EXPECT_EQ(played(lines, unused).finding, "");
    EXPECT_THAT(played(lines, unused, planted).finding, HasSubstr(finding));
}

Lines const k_restart{"at 2s diagnostics restart 1"};
Lines const k_sleeps{"at 2s network sleeps"};
Lines const k_call{"at 2s application hud requests ecu"};
Lines const k_unused{"config StateManagerNMUsage false", "at 2s application hud requests ecu"};
Lines const k_suspend{"clients dcm, radio, dem", "at 2s key p", "at 4s key r"};
Lines const k_fault{"at 2s manager fails", "at 3s application hud requests ecu", "at 4s manager works", "at 5s key p",
                    "at 9s key r"};
constexpr char const* k_activity = "Ecu state based on NM activity: ";

INSTANTIATE_TEST_SUITE_P(
    Each, Lives_that_are_spoilt,
    testing::Values(
        Spoilt{"the restart word restartao was not written", k_restart, without(Kind::restart, "restartao")},
        Spoilt{"the restart word cancel is not what",
               {"at 1s restart-file refuses", "at 2s diagnostics restart 5"},
               with(Kind::restart, "cancel", {0s, Kind::restart, "refused", "cancel"})},
        Spoilt{"the restart word restartm3 is not what",
               {"at 1s restart-file refuses", "at 2s diagnostics restart 5"},
               without(Kind::restart, "cancel")},
        Spoilt{"the restart word restartao is not what",
               {"at 2s diagnostics restart 3"},
               with(Kind::application, "restart 3", {0s, Kind::restart, "written", "restartao"})},
        Spoilt{"the network sleeps, and is taken for awake", k_sleeps, without(Kind::log, "inactive")},
        Spoilt{"the network is taken for asleep, and is not",
               {"at 2s network wakes"},
               with(Kind::log, std::string(k_activity) + "active",
                    {0s, Kind::log, "info", std::string(k_activity) + "inactive"})},
        Spoilt{"the network is taken for asleep, and is not", k_sleeps,
               with(Kind::log, "inactive", {0s, Kind::network, "", "80 00 00"})},
        Spoilt{"network management is there, and is not found", k_call, nothing_but_the_start},
        Spoilt{"network management was told release ff ff ff 01 before user data", k_call,
               without(Kind::request, "user data 80")},
        Spoilt{"network management was not told user data", {"at 2s key n"}, without(Kind::request, "")},
        Spoilt{"a call has failed: hud requests ecu, failed", k_call,
               with(Kind::application, "hud requests ecu", {0s, Kind::application, "hud", "requests ecu, failed"})},
        Spoilt{"a call of hud was answered, and nobody serves it", k_unused, without(Kind::application, ", failed")},
        Spoilt{"network management was told without being used", k_unused,
               with(Kind::word, "running", {0s, Kind::request, "request", "01"})},
        Spoilt{"what is held was not requested of the network since the last resume", k_fault,
               with(Kind::word, "resuming", {0s, Kind::application, "navigation", "requests com 08"})},
        Spoilt{"requested of the network is", k_call,
               with(Kind::word, "running", {0s, Kind::application, "navigation", "requests com 08"})},
        Spoilt{"the driver goes on after its end", k_call,
               with(Kind::application, "hud", {0s, Kind::neighbour, "service manager", "stops the daemon"})},
        Spoilt{"the daemon has ended, and nobody",
               {"at 2s service-manager stops"},
               without(Kind::neighbour, "stops the daemon")},
        Spoilt{"something after the end: startingup",
               {"at 2s key power"},
               with(Kind::end, "", {0s, Kind::word, "written", "startingup"})},
        Spoilt{"the power-off service was not told: lookup", k_suspend, without(Kind::power_off, "lookup")},
        Spoilt{"is not next", k_suspend,
               with(Kind::log, "Received DCM", {0s, Kind::log, "info", "Requesting  kPrepSD  mode for DEM"})},
        Spoilt{"was not asked by", k_suspend, without(Kind::client, "radio asked kPrepSD")},
        Spoilt{"was asked twice", k_suspend,
               with(Kind::client, "radio asked kPrepSD", {0s, Kind::client, "radio", "asked kPrepSD"})},
        Spoilt{"all have answered, and nobody notes it", k_suspend, without_the_log_of_applications},
        Spoilt{"a group has had",
               {"config ApplicationSuspendRequestTimeout 2", "clients radio silent", "at 2s key p"},
               without_the_log_of_applications},
        Spoilt{"a group had 0 ms, not 60000 ms", k_suspend,
               with(Kind::client, "radio asked kPrepSD",
                    {0s, Kind::log, "info",
                     "Received application client completion notification for  kPrepSD . Status:  1"})},
        Spoilt{"it took 3600300 ms", k_suspend, an_hour_later(Kind::state, "PreparedSD")},
        Spoilt{"it took 3600300 ms", k_suspend, an_hour_later(Kind::state, "Running")},
        Spoilt{"the intention to suspend is forgotten", {"at 2s key n"}, with_the_key("s")},
        Spoilt{"an intention to suspend nobody has", {"at 2s key s"}, with_the_key("n")},
        Spoilt{"has not answered, and", k_suspend, without(Kind::client, "radio answered kPrepSD")}));

// Each state of a suspend asks the network for nothing but on its way into the first.
TEST(A_suspend, In_which_a_later_state_tells_the_network_something_is_found) {
    Lines const lines{"clients dcm, radio, dem", "at 2s key p"};
    auto const telling = [](std::string const& word) {
        return [word](Entry const& entry) {
            bool const is_there = entry.kind == Kind::word && entry.what == word;
            return is_there ? Timeline{entry, {entry.at, Kind::request, "request", "01"}} : Timeline{entry};
        };
    };
    Coverage unused;
    EXPECT_EQ(played(lines, unused).finding, "");
    EXPECT_EQ(played(lines, unused, telling("preparing")).finding, "");
    EXPECT_THAT(played(lines, unused, telling("prepared4sd")).finding, HasSubstr("a message during the suspend"));
}

// An application that the daemon does not know of.
TEST(User_data, That_is_not_what_applications_hold_is_found) {
    Lines const lines{"config NmUserDataConfig.CabBitsEnabled true", "at 2s application hud requests com 01 ac 9",
                      "at 3s application hud releases com 01"};
    auto const planted = [](std::string const& what) {
        return [what](Entry const& entry) {
            return entry.kind == Kind::word && entry.what == "running"
                       ? Timeline{entry, {entry.at, Kind::application, "navigation", what}}
                       : Timeline{entry};
        };
    };
    Coverage unused;
    EXPECT_EQ(played(lines, unused).finding, "");
    EXPECT_EQ(played(lines, unused, planted("releases wake-up")).finding, "");
    for (auto const* const what : {"requests wake-up", "requests wake-up ac 3", "requests com 00 ac 16"}) {
        EXPECT_THAT(played(lines, unused, planted(what)).finding, HasSubstr("the user data is 80 00 00 00 00 00, not"));
    }
}

TEST(A_life_that_breaks_a_rule, Is_told_by_the_lines_that_it_takes) {
    Lines const lines{"clients radio after 3s", "at 1s key p", "at 2s key n", "at 3s key r"};

    auto const shortest = shrunk(lines, [](Lines const& some) {
        return std::count(some.begin(), some.end(), "at 1s key p") == 1 &&
               std::count(some.begin(), some.end(), "at 3s key r") == 1;
    });

    EXPECT_EQ(shortest, (Lines{"at 1s key p", "at 3s key r"}));
}

}  // namespace
}  // namespace lives
