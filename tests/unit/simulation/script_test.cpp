// Scripts of ap_whatif: what is read, what is refused and where, and what is told of a life.

#include "simulation/script.h"

#include "simulation/configuration.h"
#include "simulation/play.h"
#include "simulation/report.h"
#include "simulation/worst.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace simulation {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

struct Bad_script {
    char const* script;
    char const* complaint;
};

class Bad_scripts : public testing::TestWithParam<Bad_script> {};

std::string complaint_about(std::string const& text) {
    try {
        configuration_of(parse_script(text), std::nullopt);
    } catch (Script_error const& error) {
        return error.what();
    }
    return "none";
}

TEST_P(Bad_scripts, Are_refused_with_their_place_and_one_sentence) {
    EXPECT_EQ(complaint_about(GetParam().script), GetParam().complaint);
}

constexpr char const* k_line =
    "1:1: \"press\" is not what a line begins with: config, clients, at, expect, until, "
    "manager, power-off";
constexpr char const* k_event =
    "1:7: \"press\" is not an event: key, application, diagnostics, client, network, "
    "others, manager, status-file, restart-file, service-manager, keyboard";
constexpr char const* k_wanted =
    "1:8: \"Nowhere\" is neither a state nor word, client, machine-state, power-off, "
    "restart, network-state, user-data or end";

INSTANTIATE_TEST_SUITE_P(
    Each, Bad_scripts,
    testing::Values(
        Bad_script{"press n", k_line}, Bad_script{"at 1s press n", k_event},
        Bad_script{"# first\n\n  at 1s key x", "3:13: there is no key \"x\": r, n, s, p, power"},
        Bad_script{"at 1s key", "1:10: here a key is missing"}, Bad_script{"at", "1:3: here a time is missing"},
        Bad_script{"at 1 key n", "1:4: \"1\" is no time of at most a day, like 100ms, 1.5s or 2min"},
        Bad_script{"at 1.2.3s key n", "1:4: \"1.2.3s\" is no time of at most a day, like 100ms, 1.5s or 2min"},
        Bad_script{"at 86401s key n", "1:4: \"86401s\" is no time of at most a day, like 100ms, 1.5s or 2min"},
        Bad_script{"at 99999999min key n",
                   "1:4: \"99999999min\" is no time of at most a day, like 100ms, 1.5s or 2min"},
        Bad_script{"at 1s key n twice", "1:13: \"twice\" is more than this line has"},
        Bad_script{"clients dcm,, dem", "1:13: here a client is missing"},
        Bad_script{"clients dcm late", "1:13: \"late\" is more than this line has"},
        Bad_script{"at 1s application a requests com", "1:33: here the bits are missing, bytes like 00 01"},
        Bad_script{"at 1s application a requests com 0g", "1:34: \"0g\" is no byte of two digits 0 to 9 and a to f"},
        Bad_script{"at 1s application a requests com 0", "1:34: \"0\" is no byte of two digits 0 to 9 and a to f"},
        Bad_script{"at 1s application a requests com 0001",
                   "1:34: \"0001\" is no byte of two digits 0 to 9 and a to f"},
        Bad_script{"at 1s application a requests com 01 ac 256",
                   "1:40: \"256\" is not an AC number, a whole number of at most 255"},
        Bad_script{"at 1s diagnostics restart vm",
                   "1:27: \"vm\" is not a kind of restart, a whole number of at most 255"},
        Bad_script{"expect Nowhere", k_wanted},
        Bad_script{"expect Running within 1s", "1:25: here \"of\" and a time is missing: of"},
        Bad_script{"manager", "1:8: here the network manager's place is missing: there, absent"},
        Bad_script{
            "expect no word prepard4sd",
            "1:16: \"prepard4sd\" is not a state word: startingup, running, runnmcontrolled, postrun, preparing, "
            "prepared4sd, resuming, shuttingdown"},
        Bad_script{"expect words running, off",
                   "1:23: \"off\" is not a state word: startingup, running, runnmcontrolled, postrun, preparing, "
                   "prepared4sd, resuming, shuttingdown"},
        Bad_script{"expect no machine-state Sutdown", "1:25: \"Sutdown\" is not a machine state: Running, Shutdown"},
        Bad_script{"expect no restart restartvn",
                   "1:19: \"restartvn\" is not a restart word: restartao, restartm3, cancel"},
        Bad_script{"clients radio, dcm\nexpect no client radoi asked kPrepSD",
                   "2:18: \"radoi\" is no client that connects: diag::dcm, radio"},
        Bad_script{"at 9s key p\nuntil 5s", "1:4: this is after the time of \"until\", when nobody looks any more"},
        Bad_script{"until 5s\nexpect no Running after 6s",
                   "2:25: this is after the time of \"until\", when nobody looks any more"},
        Bad_script{"expect no Running after 301s", "1:25: this is more than five minutes after the last event"},
        Bad_script{"until 5s\nuntil 6s", "2:7: \"until\" was said before, and is said once"},
        Bad_script{"config KnockOutTimer", "1:21: here a value in JSON is missing"},
        Bad_script{"\nconfig Knockout 3", "2:8: there is no setting \"Knockout\""},
        Bad_script{"config KnockOutTimer three", "1:22: the value of KnockOutTimer is not JSON"},
        Bad_script{"config NmUserDataConfig 3\nconfig NmUserDataConfig.CABBytes 3",
                   "2:8: the configuration has no place for NmUserDataConfig.CABBytes"},
        Bad_script{"config a/~ 3", "1:8: there is no setting \"a/~\""},
        Bad_script{
            "config KnockOutTimer 3\nconfig KnockOutTimer \"soon\"",
            "2:22: KnockOutTimer: the daemon refuses the configuration: State_manager_json_parser: Incorrect key "
            "type:  type must be number, but is string"},
        Bad_script{
            "config KnockOutTimer \"soon\"\nconfig NmUserDataConfig.CWUBitPosition 0\nconfig CWURequestConfig []",
            "3:25: CWURequestConfig: the daemon refuses the configuration: State_manager_json_parser: "
            "CWURequestConfig not set in configuration file!"},
        Bad_script{"config NmUserDataConfig.UserDataBytes 1025",
                   "1:39: NmUserDataConfig.UserDataBytes: UserDataBytes says 1025 bytes, and network management takes "
                   "1024 at most"}));

TEST(A_script, Has_lines_of_two_thousand_characters_and_at_most_ten_thousand_of_them) {
    EXPECT_EQ(complaint_about('#' + std::string(1999, ' ')), "none");
    EXPECT_EQ(complaint_about("\n#" + std::string(2000, ' ')), "2:2001: a line has at most 2000 characters");
    EXPECT_EQ(complaint_about(std::string(10000, '\n')), "none");
    EXPECT_EQ(complaint_about(std::string(10001, '\n')), "10001:1: a script has at most 10000 lines");
}

Outcome played(std::string const& text) {
    auto const script = parse_script(text);
    return play(script, configuration_of(script, std::nullopt));
}

TEST(A_script, Is_told_as_a_timeline) {
    EXPECT_EQ(text_of(played("config StateManagerNMUsage false\n"
                             "clients radio after 3s\n"
                             "at 1s key p   # a suspend\n"
                             "at 9s key power\n"
                             "expect PreparedSD within 100ms of 4.2s\n"
                             "expect no Running after 1s\n"
                             "expect Shutting down before 9s\n"
                             "expect words startingup, running\n")),
              "     0.000 s  Starting up for 0.100 s: the start\n"
              "     0.000 s    word startingup\n"
              "     0.000 s    client radio connected in kOn\n"
              "     0.100 s  Running for 0.900 s: network management is not used (Starting up 1)\n"
              "     0.100 s    word running\n"
              "     0.100 s    machine state Running, granted\n"
              "     1.000 s    key p\n"
              "     1.000 s  Preparing for 3.300 s: command PrepareSD (Running 3)\n"
              "     1.000 s    word preparing\n"
              "     1.000 s    power-off service: lookup vyn_per_daemon\n"
              "     1.100 s    client radio asked kPrepSD\n"
              "     4.100 s    client radio answered kPrepSD\n"
              "     4.300 s  PreparedSD for 4.700 s: all have answered (Preparing 3)\n"
              "     4.300 s    word prepared4sd\n"
              "     9.000 s    key power\n"
              "     9.000 s  Shutting down for 0.000 s: command Shutdown (PreparedSD 2)\n"
              "     9.000 s    word shuttingdown\n"
              "     9.000 s    power-off service: terminate\n"
              "     9.000 s    power-off service: poweroff 60000\n"
              "     9.000 s  end: power off\n"
              "\n"
              "kept    line 5: PreparedSD within 100ms of 4.2s (at 4.300 s)\n"
              "kept    line 6: no Running after 1s (only at 0.100 s)\n"
              "MISSED  line 7: Shutting down before 9s (only at 9.000 s)\n"
              "MISSED  line 8: words startingup, running (they were startingup, running, preparing, prepared4sd, "
              "shuttingdown)\n");
}

TEST(A_script, Is_played_with_neighbours_that_fail) {
    auto const text =
        text_of(played("clients dcm crashes after 1s, radio invalid, dem fails\n"
                       "config DMSuspendRequestTimeout 5\n"
                       "manager absent\n"
                       "power-off absent\n"
                       "at 1s manager offers\n"
                       "at 2s status-file refuses\n"
                       "at 2s manager fails\n"
                       "at 2s service-manager refuses\n"
                       "at 2s client stranger connects in kPrepSD\n"
                       "at 2s client stranger reports kOff\n"
                       "at 2s diagnostics restart 1\n"
                       "at 3s key p\n"
                       "at 20s service-manager silent\n"
                       "at 20s key power\n"));
    for (auto const* const line :
         {"1.100 s  Running for 1.900 s", "2.000 s    restart word restartao", "3.000 s    word preparing, refused",
          "network management: release 00 00 00 00, failed", "4.000 s    client diag::dcm crashed",
          "8.100 s    client stranger asked kPrepSD", "client radio answered kPrepSD, invalid",
          "diag::dem answered kPrepSD, failed", "20.000 s  Shutting down for 1.000 s",
          "21.000 s    machine state Shutdown, unanswered"}) {
        EXPECT_THAT(text, HasSubstr(line));
    }
}

std::string complaint_about_file(std::string const& text) {
    try {
        configuration_of(parse_script(""), text);
    } catch (std::runtime_error const& error) {
        return error.what();
    }
    return "none";
}

TEST(A_configuration, Is_refused_with_the_place_from_which_on_it_is_no_JSON) {
    EXPECT_EQ(complaint_about_file("{\"a\": }"), "it is no JSON from line 1, column 7 on");
    EXPECT_EQ(complaint_about_file("{\n  \"a\": 1,\n  b\n}"), "it is no JSON from line 3, column 3 on");
    EXPECT_EQ(complaint_about_file(""), "it is no JSON from line 1, column 1 on");
    EXPECT_EQ(complaint_about_file("{"), "it is no JSON from line 1, column 2 on");
    EXPECT_EQ(complaint_about_file("[]"), "the configuration is no JSON object with a member \"ap_statemanager\"");
}

TEST(A_configuration, Is_refused_with_the_member_and_its_place) {
    auto const good = configuration_of(parse_script(""), std::nullopt);
    std::string const type = "the daemon refuses the configuration: State_manager_json_parser: Incorrect key type:  ";
    std::string const missing = "the daemon refuses the configuration: State_manager_json_parser: Missing  ";
    for (auto const& [what, to, complaint] : std::vector<std::array<std::string, 3>>{
             {"\"KnockOutTimer\":3", "\n  \"KnockOutTimer\" : \"a\"",
              "KnockOutTimer in line 2, column 3: " + type + "type must be number, but is string"},
             {"\"KnockOutTimer\":3,", "",
              "KnockOutTimer: " + missing + "KnockOutTimer in configuration. caused by key 'KnockOutTimer' not found"},
             {"\"UpdateStatusFile\":\"/sys/vmctl/set_status\"", "\n\"UpdateStatusFile\":1",
              "SharedMemoryConfig.UpdateStatusFile in line 2, column 1: " + type +
                  "type must be string, but is number"},
             {"\"UserDataBytes\":6", "\n\n \"UserDataBytes\":1025",
              "NmUserDataConfig.UserDataBytes in line 3, column 2: UserDataBytes says 1025 bytes, and network "
              "management takes 1024 at most"},
             {"\"KnockOutTimer\":3", "\n\"KnockOutTimer\":\"b\",\n\"a\":\"KnockOutTimer\"",
              "KnockOutTimer in line 2, column 1: " + type + "type must be number, but is string"}}) {
        auto changed = good;
        ASSERT_NE(changed.find(what), std::string::npos) << what;
        changed.replace(changed.find(what), what.size(), to);
        EXPECT_EQ(complaint_about_file(changed), complaint);
    }
}

TEST(A_configuration, That_the_daemon_refuses_is_taken_where_the_script_mends_it) {
    auto changed = configuration_of(parse_script(""), std::nullopt);
    changed.replace(changed.find("\"KnockOutTimer\""), 15, "\"Knock\"");
    EXPECT_NO_THROW(configuration_of(parse_script("config KnockOutTimer 1"), changed));
}

TEST(A_script, Is_played_for_two_million_cycles_at_most) {
    for (auto const* const text :
         {"config StateManagerMainPeriod 1\nuntil 1440min", "at 0s keyboard lost\nuntil 1440min"}) {
        std::string complaint;
        try {
            played(text);
        } catch (std::runtime_error const& error) {
            complaint = error.what();
        }
        EXPECT_EQ(
            complaint,
            "a life has at most 2000000 cycles: it needs an earlier \"until\" or a longer StateManagerMainPeriod");
    }
    EXPECT_EQ(played("until 1440min").timeline.back().what, k_end_of_the_look);
}

// A long period makes the search short.
TEST(The_longest_way, Is_that_of_silent_clients_and_a_key_at_the_worst_moment) {
    auto const script = parse_script(
        "config ApplicationSuspendRequestTimeout 2\n"
        "config DMSuspendRequestTimeout 1\n"
        "config StateManagerMainPeriod 500\n"
        "clients radio after 700ms, dcm, dem after 20s\n");
    auto const& resume = goals().at(1);
    auto const both = Longest_way(script, configuration_of(script, std::nullopt), resume).text();
    EXPECT_THAT(both, StartsWith("With the clients as they are, the longest resume takes "));
    auto const text = both.substr(both.find("Whatever"));
    // The last group was just asked to stand by, and after that all are asked to run.
    EXPECT_EQ(text.substr(0, text.find("\n\n")),
              "Whatever the clients do, the longest resume takes 7.000 s, from key r to Running:\n"
              "     1.500 s  key r, Resuming, diag::dem asked kPrepSD\n"
              "     1.500 s  diag::dem asked kOn\n"
              "     2.500 s  radio asked kOn\n"
              "     1.500 s  diag::dcm asked kOn\n"
              "     0.000 s  Running");
    EXPECT_THAT(text, HasSubstr("radio silent"));

    // Its script plays as long as was looked.
    auto const begin = text.find("config", text.find("The script that plays it:"));
    auto const found = parse_script(text.substr(begin, text.find("\n\n", begin) - begin));
    ASSERT_TRUE(found.until.has_value());
    auto const timeline = play(found, configuration_of(found, std::nullopt)).timeline;
    EXPECT_EQ(timeline.back().what, k_end_of_the_look);
    EXPECT_EQ(timeline.back().at, *found.until);
}

// What it is made of is all of it: also what comes after the last state.
TEST(The_longest_way, Is_made_of_all_that_takes_its_time) {
    for (auto const* const lines :
         {"power-off takes 2s\nclients dcm, radio after 1s\n", "clients dcm, radio after 1s\n"}) {
        auto const script =
            parse_script(std::string("config StateManagerMainPeriod 500\nconfig PMSuspendRequestTimeout 9\n"
                                     "config ApplicationSuspendRequestTimeout 2\n"
                                     "config DMSuspendRequestTimeout 1\n") +
                         lines);
        for (auto const& goal : goals()) {
            auto const worst = Longest_way(script, configuration_of(script, std::nullopt), goal).whatever_they_do();
            Time sum{0};
            for (auto const& leg : worst.legs) {
                sum += leg.length;
            }
            EXPECT_EQ(sum, worst.length) << lines << goal.name;
        }
    }
}

constexpr char const* k_short =
    "config StateManagerMainPeriod 500\nconfig ApplicationSuspendRequestTimeout 2\n"
    "config DMSuspendRequestTimeout 1\nconfig PMSuspendRequestTimeout 9\n";

std::string longest(std::string const& lines, unsigned goal) {
    auto const script = parse_script(k_short + lines);
    return Longest_way(script, configuration_of(script, std::nullopt), goals().at(goal)).text();
}

/// The script behind a line of the text, played.
Timeline played_from(std::string const& text, char const* line) {
    auto const begin = text.find("config", text.find(line));
    return played(text.substr(begin, text.find("\n\n", begin) - begin)).timeline;
}

TEST(The_longest_way, Is_told_with_the_clients_as_they_are_and_whatever_they_do) {
    auto const text =
        longest("clients dcm, radio after 700ms, dem\nat 0s status-file takes after 2s\nat 3s key n\n", 0);
    EXPECT_THAT(text, HasSubstr("Where it is not lost, the longest suspend takes 8.000 s, from key p to "));
    EXPECT_THAT(text, HasSubstr("Where it is not lost, the longest suspend takes 11.500 s, from key p to "));
    EXPECT_THAT(text, HasSubstr("answer at once, but for\n    at 0.000s status-file takes after 2s\nNot played: 1 of"));

    auto const timeline = played_from(text, "Whatever");
    auto const key = std::find_if(timeline.begin(), timeline.end(), [](auto const& e) { return e.kind == Kind::key; });
    auto const word = std::find_if(key, timeline.end(), [](auto const& e) { return e.what == "prepared4sd"; });
    ASSERT_NE(word, timeline.end());
    EXPECT_EQ(word->at - key->at, std::chrono::milliseconds(11500));
}

TEST(The_longest_way, Has_clients_that_come_and_change_in_the_script) {
    auto const text = longest("at 0s client radio connects after 700ms\nat 900ms client radio after 1s\n", 0);
    EXPECT_THAT(text, HasSubstr("Where it is not lost, the longest suspend takes 2.500 s"));
    EXPECT_THAT(text, HasSubstr("at 0.900s client radio silent\n"));
}

TEST(The_longest_way, Is_no_bound_where_a_key_is_lost) {
    auto const text = longest("clients dcm, radio after 700ms\npower-off takes 1s\n", 2);
    EXPECT_THAT(text, StartsWith("With the clients as they are, there is no bound: in "));
    EXPECT_THAT(text, HasSubstr("\nWhatever the clients do, there is no bound: in "));
    EXPECT_THAT(text, HasSubstr("gives the power-off service 9.000 s (PMSuspendRequestTimeout)"));

    auto const timeline = played_from(text, "The first such life:");
    EXPECT_EQ(timeline.back().what, k_end_of_the_look);
    EXPECT_TRUE(std::any_of(timeline.begin(), timeline.end(), [](auto const& e) { return e.what == "power"; }));
    EXPECT_TRUE(std::none_of(timeline.begin(), timeline.end(), [](auto const& e) { return e.who == "Shutting down"; }));
}

TEST(The_longest_way, Names_what_makes_a_life_of_its_search_too_long) {
    try {
        longest(
            "config StateManagerMainPeriod 10\nconfig ApplicationSuspendRequestTimeout 7200\n"
            "config DMSuspendRequestTimeout 7200\n",
            0);
        FAIL();
    } catch (std::runtime_error const& error) {
        EXPECT_THAT(error.what(), HasSubstr("shorter time-outs of clients"));
    }
}

TEST(The_longest_way, Is_not_searched_where_clients_have_hours) {
    for (auto const* const hours : {"14401", "4294967295"}) {
        auto const script = parse_script("config DMSuspendRequestTimeout 1\nconfig ApplicationSuspendRequestTimeout " +
                                         std::string(hours));
        std::string complaint;
        try {
            Longest_way(script, configuration_of(script, std::nullopt), goals().front());
        } catch (std::runtime_error const& error) {
            complaint = error.what();
        }
        EXPECT_THAT(complaint, HasSubstr("too long to search"));
    }
}

TEST(The_manual, Has_an_example_that_keeps_what_it_expects) {
    std::ifstream file(WHATIF_MANUAL);
    std::string script;
    bool is_inside = false;
    for (std::string line; std::getline(file, line);) {
        is_inside = line.rfind(".Bd", 0) == 0 || (is_inside && line != ".Ed");
        script += is_inside && line.front() != '.' ? line + '\n' : "";
    }
    auto const outcome = played(script);
    EXPECT_EQ(outcome.verdicts.size(), 2U);
    EXPECT_TRUE(outcome.is_kept()) << text_of(outcome);
}

std::vector<std::string> examples() {
    std::vector<std::string> names;
    for (auto const& entry : std::filesystem::directory_iterator(WHATIF_EXAMPLES)) {
        names.push_back(entry.path().stem().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

class Examples : public testing::TestWithParam<std::string> {};

TEST_P(Examples, Are_kept_and_the_same_each_time) {
    std::ifstream file(WHATIF_EXAMPLES "/" + GetParam() + ".whatif");
    std::string const text{std::istreambuf_iterator<char>(file), {}};
    auto const outcome = played(text);
    EXPECT_FALSE(outcome.verdicts.empty());
    EXPECT_TRUE(outcome.is_kept()) << text_of(outcome);
    EXPECT_EQ(json_of(outcome), json_of(played(text)));
}

/// FNV-1a.
std::uint64_t hash_of(std::string const& text) {
    std::uint64_t hash = 0xCBF29CE484222325U;
    for (char const character : text) {
        hash = (hash ^ static_cast<unsigned char>(character)) * 0x100000001B3U;
    }
    return hash;
}

// On every machine. Whoever changes an example or what the daemon does in one changes this number.
TEST(All_examples, Give_the_same_bytes_with_each_compiler) {
    std::string all;
    for (auto const& name : examples()) {
        std::ifstream file(WHATIF_EXAMPLES "/" + name + ".whatif");
        all += json_of(played({std::istreambuf_iterator<char>(file), {}}));
    }
    EXPECT_EQ(hash_of(all), 7887508968443130352U);
}

INSTANTIATE_TEST_SUITE_P(Each, Examples, testing::ValuesIn(examples()), [](auto const& example) {
    auto name = example.param;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

}  // namespace
}  // namespace simulation
