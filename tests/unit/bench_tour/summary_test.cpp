#include "bench/tour/tour.h"

#include <set>
#include <string>

#include <gmock/gmock.h>

namespace bench::tour {
namespace {

using testing::HasSubstr;
using vehicle::Kind;

TEST(Summary, Is_content_when_everything_was_seen) {
    testing::internal::CaptureStdout();
    bool const content = print_summary({{"start", "log \"one\"", true, 1}, {"start", "log \"two\"", true, 2}});
    auto const text = testing::internal::GetCapturedStdout();
    EXPECT_TRUE(content);
    EXPECT_THAT(text, HasSubstr("2 of 2 expectations seen"));
}

TEST(Summary, Is_not_content_when_one_expectation_was_not_seen) {
    testing::internal::CaptureStdout();
    bool const content = print_summary({{"start", "log \"one\"", true, 1}, {"stop", "log \"two\"", false, 0}});
    auto const text = testing::internal::GetCapturedStdout();
    EXPECT_FALSE(content);
    EXPECT_THAT(text, HasSubstr("1 of 2 expectations seen"));
    EXPECT_THAT(text, HasSubstr("NO\n"));
}

TEST(Summary, Names_a_step_once) {
    testing::internal::CaptureStdout();
    print_summary({{"the only step", "a", true, 1}, {"the only step", "b", true, 2}});
    auto const text = testing::internal::GetCapturedStdout();
    EXPECT_EQ(text.find("the only step"), text.rfind("the only step"));
}

TEST(Steps, Have_a_name_of_their_own_and_something_to_see) {
    std::set<std::string> names;
    for (auto const& step : steps()) {
        EXPECT_TRUE(names.insert(step.name).second) << step.name;
        EXPECT_FALSE(step.expectations.empty()) << step.name;
    }
}

TEST(Steps, Reach_every_state_that_needs_no_network_management) {
    std::set<std::string> words;
    for (auto const& step : steps()) {
        for (auto const& expectation : step.expectations) {
            if (expectation.kind == Kind::state_word) {
                words.insert(expectation.text);
            }
        }
    }
    EXPECT_THAT(words, testing::UnorderedElementsAre("startingup", "running", "preparing", "prepared4sd", "resuming",
                                                     "shuttingdown"));
}

TEST(Steps, Take_every_transition_that_needs_no_network_management) {
    std::set<std::string> transitions;
    std::string const prefix = "AP_StateManger transition from ";
    for (auto const& step : steps()) {
        for (auto const& expectation : step.expectations) {
            if (expectation.kind == Kind::log && expectation.text.rfind(prefix, 0) == 0) {
                transitions.insert(expectation.text.substr(prefix.size()));
            }
        }
    }
    EXPECT_THAT(transitions, testing::UnorderedElementsAre("Starting up  to  Running", "Running  to  Preparing",
                                                           "Running  to  Shutting down", "Preparing  to  PreparedSD",
                                                           "Preparing  to  Resuming", "PreparedSD  to  Resuming",
                                                           "PreparedSD  to  Shutting down", "Resuming  to  Running",
                                                           "Resuming  to  Shutting down"));
}

}  // namespace
}  // namespace bench::tour
