// Each fault that a client can have, against the rules of check-client.

#include "check_client.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace statectl {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::UnorderedElementsAreArray;

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
    if (rule == "answer-form") {
        return {"prepares", "resumes"};
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

/// The fault's own rule and every RULES_APARTth before and after it, so that each rule meets other clients' faults too.
std::vector<std::string> rules_to_look_at(std::string const& fault) {
    auto const rules = all_rules();
    auto const own = std::find(rules.begin(), rules.end(), fault) - rules.begin();
    std::vector<std::string> chosen;
    for (auto at = own % RULES_APART; at < static_cast<std::ptrdiff_t>(rules.size()); at += RULES_APART) {
        chosen.push_back(rules[static_cast<std::size_t>(at)]);
    }
    return without(chosen, rules_leaning_on(fault));
}

class One_fault : public testing::TestWithParam<char const*> {};
class Basic_fault : public testing::TestWithParam<char const*> {};

TEST_P(One_fault, Breaks_its_own_rule_and_no_other) {
    auto const rules = rules_to_look_at(GetParam());
    auto const result = run_statectl(of_rules(rules, check({MISBEHAVING_CLIENT, GetParam()})));
    auto const report = json::parse(result.output);
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(rules_with(report, "fail"), ElementsAre(GetParam())) << result.output;
    EXPECT_THAT(rules_with(report, "pass"), ElementsAreArray(without(rules, {GetParam()}))) << result.output;
}

// Bytes that wait for a client come to it at once, and a request that is put together of them shows nothing.
TEST(Faults, Of_slow_bytes_shows_in_a_client_that_reads_late) {
    auto const result = run_statectl(of_rules({"slow-bytes"}, check({MISBEHAVING_CLIENT, "slow-bytes", "drowsy"})));
    EXPECT_THAT(rules_with(json::parse(result.output), "fail"), ElementsAre("slow-bytes")) << result.output;
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

// Those of misbehaving_client.cpp, each named by the rule that it breaks.
constexpr std::array k_faults{
    "connects",   "waits",       "hello",   "one-connection", "unasked",  "answers",       "answer-form",
    "prepares",   "resumes",     "number",  "falling-number", "state",    "unknown-state", "same-state",
    "once",       "duplicate",   "newest",  "slow-bytes",     "pause",    "late",          "flood",
    "comes-back", "keeps-state", "forgets", "forgets-half",   "nonsense", "stays",         "ends"};

TEST(Faults, Have_a_broken_client_for_each_rule) {
    EXPECT_THAT(all_rules(), UnorderedElementsAreArray(k_faults));
}

INSTANTIATE_TEST_SUITE_P(Faults, One_fault, testing::ValuesIn(k_faults), name_of_fault);

INSTANTIATE_TEST_SUITE_P(Faults, Basic_fault, testing::Values("connects", "answers", "comes-back"), name_of_fault);

}  // namespace
}  // namespace statectl
