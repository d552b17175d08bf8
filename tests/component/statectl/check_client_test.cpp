#include "statectl.h"

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace statectl {
namespace {

using nlohmann::json;
using testing::AllOf;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

std::vector<std::string> check(std::vector<std::string> const& program, char const* patience_ms = "1500") {
    std::vector<std::string> words{"check-client", "--json", "--patience", patience_ms, "--quiet", "250", "--"};
    words.insert(words.end(), program.begin(), program.end());
    return words;
}

std::vector<std::string> rules_with(json const& report, std::string const& result) {
    std::vector<std::string> names;
    for (auto const& rule : report.at("rules")) {
        if (rule.at("result") == result) {
            names.push_back(rule.at("rule"));
        }
    }
    return names;
}

std::vector<std::string> all_rules() {
    std::vector<std::string> names;
    std::istringstream lines(run_statectl({"check-client", "--list"}).output);
    for (std::string line; std::getline(lines, line);) {
        names.push_back(line.substr(0, line.find(' ')));
    }
    return names;
}

TEST(Check_client, Passes_a_good_client_without_the_library) {
    auto const result = run_statectl(check({MISBEHAVING_CLIENT}));
    auto const report = json::parse(result.output);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(report.at("passed"), all_rules().size());
    EXPECT_THAT(rules_with(report, "fail"), IsEmpty());
}

TEST(Check_client, Passes_a_client_on_the_library) {
    auto const result = run_statectl(check({STATECTL, "client", "--name", "good"}));
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_EQ(json::parse(result.output).at("passed"), all_rules().size());
}

TEST(Check_client, Passes_a_client_that_answers_late_and_fails) {
    auto const result =
        run_statectl(check({STATECTL, "client", "--name", "late", "--answer-after", "50", "--status", "1"}));
    EXPECT_EQ(result.status, 0) << result.output;
}

std::vector<std::string> without(std::vector<std::string> names, std::vector<std::string> const& others) {
    auto const is_other = [&](auto const& name) { return std::count(others.begin(), others.end(), name) != 0; };
    names.erase(std::remove_if(names.begin(), names.end(), is_other), names.end());
    return names;
}

/// What can't be checked when the rule is broken. Each of these waits for what never comes, as long as it may.
std::vector<std::string> rules_leaning_on(std::string const& rule) {
    if (rule == "connects") {
        return without(all_rules(), {"connects"});
    }
    if (rule == "answers") {
        return without(all_rules(), {"connects", "waits", "hello", "one-connection", "unasked", "answers", "ends"});
    }
    if (rule == "comes-back") {
        return {"keeps-state", "forgets", "forgets-half", "nonsense"};
    }
    return {};
}

/// The command line of a check that looks at these rules only.
std::vector<std::string> of_rules(std::vector<std::string> const& rules, std::vector<std::string> words) {
    for (auto const& rule : rules) {
        words.insert(words.begin() + 1, {"--rule", rule});
    }
    return words;
}

class One_fault : public testing::TestWithParam<char const*> {};
class Basic_fault : public testing::TestWithParam<char const*> {};

TEST_P(One_fault, Breaks_its_own_rule_and_no_other) {
    auto const leaning = rules_leaning_on(GetParam());
    auto const others = without(all_rules(), leaning);
    auto const result = run_statectl(of_rules(others, check({MISBEHAVING_CLIENT, GetParam()})));
    auto const report = json::parse(result.output);
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(rules_with(report, "fail"), ElementsAre(GetParam())) << result.output;
    EXPECT_THAT(rules_with(report, "pass"), ElementsAreArray(without(others, {GetParam()}))) << result.output;
}

TEST_P(Basic_fault, Keeps_the_rules_that_lean_on_it_from_being_checked) {
    auto const leaning = rules_leaning_on(GetParam());
    auto const result = run_statectl(of_rules(leaning, check({MISBEHAVING_CLIENT, GetParam()}, "200")));
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(rules_with(json::parse(result.output), "not checked"), ElementsAreArray(leaning)) << result.output;
}

std::string name_of_fault(testing::TestParamInfo<char const*> const& tested) {
    std::string name = tested.param;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Faults, One_fault,
                         testing::Values("connects", "waits", "hello", "one-connection", "unasked", "answers",
                                         "answer-form", "number", "falling-number", "state", "unknown-state",
                                         "same-state", "once", "duplicate", "newest", "slow-bytes", "pause", "late",
                                         "flood", "comes-back", "keeps-state", "forgets", "forgets-half", "nonsense",
                                         "stays", "ends"),
                         name_of_fault);

INSTANTIATE_TEST_SUITE_P(Faults, Basic_fault, testing::Values("connects", "answers", "comes-back"), name_of_fault);

TEST(Check_client, Has_a_broken_client_for_each_rule) {
    EXPECT_EQ(all_rules().size(), 26U) << "a new rule needs a fault in the list above";
}

TEST(Check_client, Tells_why_a_rule_is_broken) {
    auto const result = run_statectl({"check-client", "--rule", "number", "--rule", "hello", "--patience", "300", "--",
                                      MISBEHAVING_CLIENT, "number"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.output, AllOf(HasSubstr("pass  hello"), HasSubstr("FAIL  number"),
                                     HasSubstr("no answer to request 70000 came within 0.3 s; what came: 4464 kOn 0"),
                                     HasSubstr("1 of 2 rules hold, 1 broken, 0 not checked")));
}

TEST(Check_client, Tells_how_a_program_has_ended) {
    auto const result = run_statectl({"check-client", "--rule", "connects", "--patience", "300", "--", "false"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.output, HasSubstr("the program has ended with status 1"));
}

TEST(Check_client, Finds_a_client_that_knows_only_the_place_on_a_machine) {
    auto const result = run_statectl({"check-client", "--rule", "comes-back", "--patience", "1500", "--", "env", "-u",
                                      "AP_STATEMANAGER_SOCKET", MISBEHAVING_CLIENT});
    if (result.errors.find("found by AP_STATEMANAGER_SOCKET only") != std::string::npos) {
        GTEST_SKIP() << result.errors;
    }
    EXPECT_EQ(result.status, 0) << result.output << result.errors;
}

TEST(Check_client, Leaves_a_client_that_knows_only_the_place_on_a_machine_alone_when_told) {
    auto const result = run_statectl({"check-client", "--by-variable", "--rule", "connects", "--patience", "300", "--",
                                      "env", "-u", "AP_STATEMANAGER_SOCKET", MISBEHAVING_CLIENT});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.output, HasSubstr("no connection within 0.3 s"));
}

TEST(Check_client, Says_what_can_not_be_started) {
    auto const result = run_statectl({"check-client", "--", "/nowhere/program"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors.substr(result.errors.find("ap_statectl")),
              "ap_statectl: /nowhere/program can't be started: No such file or directory\n");
}

TEST(Check_client, Needs_a_command_and_knows_its_rules) {
    EXPECT_EQ(run_statectl({"check-client"}).status, 2);
    EXPECT_EQ(run_statectl({"check-client", "--rule", "politeness", "--", "true"}).status, 2);
    EXPECT_THAT(run_statectl({"check-client"}).errors, HasSubstr("COMMAND"));
}

TEST(Check_client, Leaves_nothing_behind) {
    auto const result = run_statectl({"check-client", "--rule", "hello", "--", "sh", "-c",
                                      "echo dir $(dirname $AP_STATEMANAGER_SOCKET); exec " MISBEHAVING_CLIENT});
    ASSERT_EQ(result.status, 0) << result.output << result.errors;
    auto const at = result.errors.find("dir ") + 4;
    auto const directory = result.errors.substr(at, result.errors.find('\n', at) - at);
    EXPECT_THAT(directory, testing::StartsWith("/tmp/ap_statectl."));
    EXPECT_FALSE(std::filesystem::exists(directory));
}

// What lived on would hold the writing end, and the reader would wait until its time is over.
std::string interrupted_by(char const* signal) {
    return std::string(R"script(
directory=$(mktemp -d)
mkfifo "$directory/alive"
timeout 20 cat "$directory/alive" >/dev/null & reader=$!
)script" STATECTL R"script( check-client --rule connects --patience 60000 -- \
    sh -c 'echo "$AP_STATEMANAGER_SOCKET" >"$0"; sleep 1000 & wait' "$directory/socket" 2>"$directory/alive" & checker=$!
for turn in $(seq 1000); do [ -s "$directory/socket" ] && break; sleep 0.01; done
kill -)script") +
           signal + R"script( $checker
wait $checker; echo "status $?"
wait $reader; echo "reader $?"
ls "$(dirname "$(cat "$directory/socket")")" >/dev/null 2>&1 || echo gone
rm -r "$directory")script";
}

TEST(Check_client, Takes_the_program_and_the_directory_along_when_a_signal_ends_it) {
    EXPECT_EQ(run_shell(interrupted_by("TERM")).output, "status 143\nreader 0\ngone\n");
    EXPECT_EQ(run_shell(interrupted_by("HUP")).output, "status 129\nreader 0\ngone\n");
}

}  // namespace
}  // namespace statectl
