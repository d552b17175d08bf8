#include "told.h"
#include "tools/trace/reports.h"
#include "tools/trace/summary.h"

#include <string>

#include <gmock/gmock.h>

namespace trace_test {
namespace {

using namespace statectl::trace;
using testing::HasSubstr;
using testing::Not;

TEST(The_text_of_a_trace, Tells_states_sequences_and_what_cost_time) {
    auto const text = text_report(told(suspend_by_key()), false);
    EXPECT_THAT(text, HasSubstr("1 life of the state manager in 25 messages\n"));
    EXPECT_THAT(text, HasSubstr("        +9.500  Preparing            9.0 s  command PrepareSD\n"));
    EXPECT_THAT(text,
                HasSubstr("        +9.500  the suspend took 9.0 s: DCM 0.100 s, applications 8.8 s (radio timed out), "
                          "DEM 0.100 s\n"));
    EXPECT_THAT(text, HasSubstr("       +19.500  was powered off the fast way\n"));
    EXPECT_THAT(text, HasSubstr("what cost time\n         8.8 s  radio did not answer in time, 1 of 1 times\n"));
}

TEST(The_text_of_a_trace, Has_colours_only_where_they_are_wanted) {
    EXPECT_THAT(text_report(told(start()), false), Not(HasSubstr("\033")));
    EXPECT_THAT(text_report(told(start()), true), HasSubstr("\033"));
}

TEST(The_object_of_a_trace, Has_the_same_for_programs) {
    auto const object = json_report(told(suspend_by_key()));
    auto const& life = object["lives"][0];
    EXPECT_EQ(life["states"][2]["state"], "Preparing");
    EXPECT_EQ(life["states"][2]["cause"], "command PrepareSD");
    EXPECT_EQ(life["states"][4]["end"], nullptr);
    EXPECT_EQ(life["sequences"][0]["groups"][1]["answers"][1]["status"], "timed out");
    EXPECT_EQ(life["process"], 1);
    EXPECT_EQ(object["offenders"][0]["text"], "radio did not answer in time, 1 of 1 times");
}

TEST(The_page_of_a_trace, Needs_nothing_else) {
    auto const page = html_report(told(suspend_by_key()), "night.dlt");
    EXPECT_THAT(page, HasSubstr("<title>night.dlt</title>"));
    EXPECT_THAT(page, HasSubstr("class=\"late\""));
    for (auto const* row : {"<td>DCM</td><td>1</td><td>–</td><td>0.100 s</td><td>0.100 s</td>",
                            "<td>applications</td><td>1</td><td>1</td><td>8.8 s</td><td>8.8 s</td>"}) {
        EXPECT_THAT(page, HasSubstr(row));
    }
    EXPECT_THAT(page, HasSubstr("prefers-color-scheme:dark"));
    for (auto const* elsewhere : {"http", "<script", "<link", "src="}) {
        EXPECT_THAT(page, Not(HasSubstr(elsewhere)));
    }
}

TEST(The_page_of_a_trace, Counts_in_its_readers_words) {
    auto story = told(suspend_by_key());
    EXPECT_THAT(html_report(story, ""), HasSubstr("<p>1 life of the state manager in 25 messages</p>"));
    story.messages = 1;
    EXPECT_THAT(html_report(story, "", {"power cycle", "power cycles", "recorded event", "recorded events"}),
                HasSubstr("<p>1 power cycle in 1 recorded event</p>"));
}

TEST(The_page_of_a_trace, Shows_a_name_that_looks_like_markup_as_text) {
    auto lines = start();
    add(lines, {{2.0, {"State_manager::ecu_alive_request: ", "<script>alert(\"&\")</script>"}}});
    auto const page = html_report(told(lines), "<title>");
    EXPECT_THAT(page, Not(HasSubstr("<script")));
    EXPECT_THAT(page, HasSubstr("&lt;script&gt;alert(&quot;&amp;&quot;)"));
    EXPECT_THAT(page, HasSubstr("<title>&lt;title&gt;</title>"));
}

TEST(Durations, Are_told_in_the_unit_that_suits_them) {
    EXPECT_EQ(duration_text(0.0123), "0.012 s");
    EXPECT_EQ(duration_text(9.04), "9.0 s");
    EXPECT_EQ(duration_text(125), "2 min 5 s");
    EXPECT_EQ(duration_text(11'100), "3 h 5 min");
}

}  // namespace
}  // namespace trace_test
