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

TEST(A_report, Sends_nothing_to_a_terminal_that_it_would_obey) {
    std::string const name = "c\x1b[2J\xc2\x9b";
    auto lines = suspend_by_key();
    add(lines, {{20.1, {"client dropped: ", name, ", reason: ", name}},
                {20.2, {"State_manager::ecu_alive_request: ", name}},
                {20.3, {"AP_StateManger transition from", "PreparedSD", " to ", name}}});
    lines.push_back({{"Failed " + name}, 20.4, 2});
    for (auto& line : lines) {
        for (auto& argument : line.arguments) {
            argument = argument == "radio" ? name : argument;
        }
    }
    auto const story = told(lines);
    auto const text = statectl::trace::text_report(story, false);
    EXPECT_THAT(text, HasSubstr("applications 8.8 s (c?[2J? timed out)"));
    EXPECT_THAT(text, HasSubstr("c?[2J? held ECU alive"));
    EXPECT_EQ(text.find('\x1b'), std::string::npos);
    EXPECT_EQ(text.find("\xc2\x9b"), std::string::npos);
    auto const coloured = statectl::trace::text_report(story, true);
    EXPECT_EQ(coloured.find("\x1b[2J"), std::string::npos);
    EXPECT_THAT(coloured, HasSubstr("\x1b[1mlife 1\x1b[0m"));
}

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
