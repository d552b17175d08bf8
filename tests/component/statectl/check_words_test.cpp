// What check-client makes of each thing that a client can say.

#include "check_client.h"

#include <ostream>

#include <gmock/gmock.h>

namespace statectl {
namespace {

using nlohmann::json;

constexpr auto const* k_hello = "component_client_v1 me kOn";
constexpr auto const* k_prepared = "1 kPrepSD 0";

// The program's start is within its patience, so it has to do on a busy machine; the shorter is for verdicts that wait
// for its end.
constexpr auto const* k_patience_ms = "15000";
constexpr auto const* k_short_patience_ms = "4000";

struct Told {
    char const* rule;
    std::vector<std::string> steps;  ///< see telling_client.cpp
    char const* result;
    char const* why;
    char const* patience_ms = k_patience_ms;
};

std::ostream& operator<<(std::ostream& stream, Told const& told) {
    stream << told.rule;
    for (auto const& step : told.steps) {
        stream << " | " << step;
    }
    return stream;
}

class Words : public testing::TestWithParam<Told> {};

TEST_P(Words, Are_judged_by_the_rule) {
    auto words = check({TELLING_CLIENT}, GetParam().patience_ms);
    words.insert(words.begin() + 1, {"--rule", GetParam().rule});
    words.insert(words.end(), GetParam().steps.begin(), GetParam().steps.end());
    auto const result = run_statectl(words);
    auto const verdict = json::parse(result.output).at("rules").at(0);
    EXPECT_EQ(verdict.at("result"), GetParam().result);
    EXPECT_EQ(verdict.at("why"), GetParam().why);
    EXPECT_EQ(result.status, std::string("pass") == GetParam().result ? 0 : 1) << result.errors;
}

constexpr auto const* k_no_hello = "it does not come and say who it is (see connects and hello)";

INSTANTIATE_TEST_SUITE_P(
    Hello, Words,
    testing::Values(
        Told{"hello", {k_hello}, "pass", ""},
        Told{"hello", {"component_client_v1 me"}, "fail", "not three elements: component_client_v1 me"},
        Told{"hello", {"component_client_v1 me 7"}, "fail", "an element is no string: component_client_v1 me 7"},
        Told{"hello",
             {"component_client_v2 me kOn"},
             "fail",
             "the version is not component_client_v1: component_client_v2 me kOn"},
        Told{"hello", {"component_client_v1 '' kOn"}, "fail", "its name or state is empty: component_client_v1  kOn"},
        Told{"hello", {"component_client_v1 me ''"}, "fail", "its name or state is empty: component_client_v1 me "},
        Told{"prepares", {"close"}, "not checked", k_no_hello}));

constexpr auto const* k_no_form = "its answer lacks elements (see answer-form)";
constexpr auto const* k_no_status = "its answer has no status (see answer-form)";

INSTANTIATE_TEST_SUITE_P(
    Answer, Words,
    testing::Values(
        Told{"answer-form", {k_hello, "1 kPrepSD 3"}, "pass", ""},
        Told{"answer-form", {k_hello, "1 kPrepSD 4"}, "fail", "the status is none of 0 to 3: 1 kPrepSD 4"},
        Told{"answer-form", {k_hello, "1 kPrepSD"}, "fail", "not a number, a string and a number: 1 kPrepSD"},
        Told{"answer-form", {k_hello, "."}, "fail", "not a number, a string and a number: a message without elements"},
        Told{"answer-form", {k_hello, "one kPrepSD 0"}, "fail", "not a number, a string and a number: one kPrepSD 0"},
        Told{"answer-form", {k_hello, "#ab kPrepSD 0"}, "fail", "not a number, a string and a number: ab kPrepSD 0"},
        Told{"answer-form", {k_hello, "1 2 0"}, "fail", "not a number, a string and a number: 1 2 0"},
        Told{"answer-form", {k_hello, "1 kPrepSD zero"}, "fail", "not a number, a string and a number: 1 kPrepSD zero"},
        Told{"answer-form",
             {k_hello, "1 kPrepSD #abcde"},
             "fail",
             "not a number, a string and a number: 1 kPrepSD 1684234849"},
        Told{"answer-form", {k_hello, "close"}, "not checked", "it does not answer (see answers)"},
        Told{"answers", {k_hello, "unread"}, "fail", "it closes the connection instead"},
        Told{"state", {k_hello, "1 kOn 1", "2 kOn 0"}, "pass", ""},
        Told{"state", {k_hello, "1 kOn 0"}, "fail", "asked for kPrepSD it has succeeded, in state kOn"},
        Told{"state", {k_hello, k_prepared, "2 kOn"}, "not checked", k_no_form},
        Told{"state", {k_hello, "1 kPrepSD #ab"}, "not checked", k_no_form},
        Told{"prepares", {k_hello, k_prepared}, "pass", ""},
        Told{"prepares", {k_hello, "1 kPrepSD 3"}, "fail", "asked for kPrepSD it answers with status 3"},
        Told{"prepares", {k_hello, "1 kPrepSD 4"}, "not checked", k_no_status},
        Told{"prepares", {k_hello, "1 kPrepSD #ab"}, "not checked", k_no_status},
        Told{"prepares", {k_hello, "1 kPrepSD"}, "not checked", k_no_status}));

// Messages that are no answer are passed over until the answer comes, and told when it does not.
INSTANTIATE_TEST_SUITE_P(
    Awaiting, Words,
    testing::Values(
        Told{"prepares", {k_hello, ". ; #ab ; 7 kOn 0 ; 1 kPrepSD 0"}, "pass", ""},
        Told{"prepares", {k_hello, "close"}, "not checked", "it does not answer (see answers)"},
        Told{"prepares", {k_hello, "drip"}, "not checked", "it does not answer (see answers)", k_short_patience_ms},
        Told{"resumes",
             {k_hello, "7 kOn 0", "close"},
             "fail",
             "no answer to request 1 came within 4 s; what came: 7 kOn 0",
             k_short_patience_ms},
        Told{"resumes", {k_hello, k_prepared, "close"}, "fail", "no answer to request 2: it has closed the connection"},
        Told{"resumes",
             {k_hello, k_prepared, "exit"},
             "fail",
             "no answer to request 2: the program has ended with status 3"},
        Told{
            "late", {k_hello, "1 kPrepSD 0 ; close"}, "fail", "no answer to request 2: it has closed the connection"}));

constexpr auto const* k_late = "after its answer to the newest request it answers the one before: 2 kOn 0";
constexpr auto const* k_lost = "it answers a request of the connection before: 4711 kOn 0";
constexpr auto const* k_no_state = "its hello or answer lacks elements (see hello and answer-form)";

INSTANTIATE_TEST_SUITE_P(
    Later, Words,
    testing::Values(
        Told{"newest", {k_hello, k_prepared, "", "3 kPrepSD 0"}, "pass", ""},
        Told{"newest", {k_hello, k_prepared, "", "3 kPrepSD 0 ; ."}, "pass", ""},
        Told{"newest", {k_hello, k_prepared, "", "3 kPrepSD 0 ; #ab"}, "pass", ""},
        Told{"newest", {k_hello, k_prepared, "", "3 kPrepSD 0 ; 9 kOn 0"}, "pass", ""},
        Told{"newest", {k_hello, k_prepared, "", "3 kPrepSD 0 ; 2 kOn 0"}, "fail", k_late},
        Told{"forgets", {k_hello, k_prepared, "", k_hello}, "pass", ""},
        Told{"forgets", {k_hello, k_prepared, "", "component_client_v1 me kOn ; . ; #ab ; 9 kOn 0"}, "pass", ""},
        Told{"forgets", {k_hello, k_prepared, "", "component_client_v1 me kOn ; 4711 kOn 0"}, "fail", k_lost},
        Told{"keeps-state", {k_hello, k_prepared, "component_client_v1 me kPrepSD"}, "pass", ""},
        Told{"keeps-state", {k_hello, k_prepared, "component_client_v1 me"}, "not checked", k_no_state},
        Told{"keeps-state", {k_hello, "1", k_hello}, "not checked", k_no_state}));

}  // namespace
}  // namespace statectl
