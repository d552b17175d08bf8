#include "bench/rules/rules.h"
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

TEST(Steps, Have_a_name_of_their_own_and_something_to_see) {
    std::set<std::string> names;
    for (auto const& step : steps()) {
        EXPECT_TRUE(names.insert(step.name).second) << step.name;
        EXPECT_FALSE(step.expectations.empty()) << step.name;
    }
}

TEST(Steps, Reach_every_row_of_the_states_tables_and_no_other) {
    std::set<std::string> known;
    for (auto const& row : rules::rows()) {
        EXPECT_TRUE(known.insert(rules::name(row)).second) << rules::name(row);
    }
    std::set<std::string> reached;
    for (auto const& step : steps()) {
        reached.insert(step.rows.begin(), step.rows.end());
    }
    EXPECT_EQ(reached, known);
}

class Rows_summary : public testing::Test {
 protected:
    Rows_summary() {
        Step step{"all", {}, {{Kind::state_word, "running"}}};
        for (auto const& row : rules::rows()) {
            step.rows.push_back(rules::name(row));
        }
        all = {step};
    }

    std::string print(std::vector<Finding> const& findings) {
        testing::internal::CaptureStdout();
        content = print_rows(all, findings);
        return testing::internal::GetCapturedStdout();
    }

    std::vector<Step> all;
    bool content{false};
};

TEST_F(Rows_summary, Is_content_when_a_step_reached_each_row) {
    auto const text = print({{"all", "state word \"running\"", true, 1}});
    EXPECT_TRUE(content);
    EXPECT_THAT(text, HasSubstr("32 of 32 rows"));
}

TEST_F(Rows_summary, Does_not_count_the_rows_of_a_step_in_which_something_was_not_seen) {
    auto const text = print({{"all", "one", true, 1}, {"all", "two", false, 0}});
    EXPECT_FALSE(content);
    EXPECT_THAT(text, HasSubstr("0 of 32 rows"));
    EXPECT_THAT(text, HasSubstr("NOT SEEN"));
}

TEST_F(Rows_summary, Does_not_count_the_rows_of_a_step_that_was_not_walked) {
    print({});
    EXPECT_FALSE(content);
}

}  // namespace
}  // namespace bench::tour
