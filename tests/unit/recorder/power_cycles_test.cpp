#include "lines.h"
#include "tools/page/words.h"
#include "tools/trace/cause.h"

#include <gmock/gmock.h>

namespace statectl::record {
namespace {

using testing::ElementsAre;

constexpr char const* k_alive = R"({"line":"alive","at":9000000000,"real":10000000000})";
constexpr char const* k_left = R"({"line":"left","at":9000000000,"real":10000000000})";

std::string transition(Number second, char const* numbers) {
    return event_line("transition", second * k_second, numbers);
}

struct End_row {
    char const* name;
    std::vector<std::string> lines;      // behind those of a life that has reached Running
    std::vector<std::string> endings;    // of its power cycles, after a reboot
    std::vector<std::string> same_boot;  // and when a daemon was started again in the same boot
};

std::vector<End_row> end_rows() {
    auto const prepared = {transition(2, "1,5,3"), transition(3, "5,6,3")};
    std::vector<std::string> const suspended(prepared);
    auto then = [](std::vector<std::string> lines, std::vector<std::string> const& more) {
        lines.insert(lines.end(), more.begin(), more.end());
        return lines;
    };
    return {
        {"nothing more", {}, {"went down in Running"}, {"no farewell in Running"}},
        {"alive, and nothing more", {k_alive}, {"went down in Running"}, {"no farewell in Running"}},
        {"the recorder left", {k_left}, {"no farewell in Running"}, {"no farewell in Running"}},
        {"in Preparing", {transition(2, "1,5,3")}, {"went down in Preparing"}, {"no farewell in Preparing"}},
        {"while suspended", suspended, {"went down in PreparedSD"}, {"no farewell in PreparedSD"}},
        {"resumed",
         then(suspended, {transition(4, "6,7,1"), transition(5, "7,1,3"), end_line("killed", 6 * k_second)}),
         {"suspended", "killed in Running"},
         {"suspended", "killed in Running"}},
        {"turned back",
         {transition(2, "1,5,3"), transition(3, "5,7,1"), end_line("watchdog", 6 * k_second)},
         {"resumed", "watchdog in Resuming"},
         {"resumed", "watchdog in Resuming"}},
        {"fast", then(suspended, {transition(4, "6,4,2")}), {"fast"}, {"fast"}},
        {"fast, seen to the end",
         then(suspended, {transition(4, "6,4,2"), end_line("fast", 5 * k_second)}),
         {"fast"},
         {"fast"}},
        {"fast, and stopped on the way",
         then(suspended, {transition(4, "6,4,2"), event_line("ended", 5 * k_second, "4,0,0")}),
         {"fast"},
         {"fast"}},
        {"from a suspend, the normal way",
         then(suspended, {transition(4, "6,4,2"), event_line("machine-state", 4 * k_second, "0,0,0", "Shutdown"),
                          event_line("ended", 5 * k_second, "4,0,0")}),
         {"normal"},
         {"normal"}},
        {"the power key", {transition(2, "1,4,4"), event_line("ended", 2 * k_second, "4,0,0")}, {"normal"}, {"normal"}},
        {"the power key, and gone at once",
         {transition(2, "1,4,4")},
         {"went down in Shutting down"},
         {"no farewell in Shutting down"}},
        {"stopped", {event_line("ended", 2 * k_second, "1,0,0")}, {"signal in Running"}, {"signal in Running"}},
        {"a word that is none",
         {end_line("eaten", 2 * k_second)},
         {"no farewell in Running"},
         {"no farewell in Running"}},
    };
}

TEST(Power_cycles, End_as_their_lines_and_what_came_after_them_tell) {
    for (auto const& row : end_rows()) {
        SCOPED_TRACE(row.name);
        std::vector<std::string> lines{life_line("a", 1), transition(1, "0,1,1")};
        lines.insert(lines.end(), row.lines.begin(), row.lines.end());
        EXPECT_EQ(endings_of(lines, {"b", {}}), row.endings);
        EXPECT_EQ(endings_of(lines, {"a", {}}), row.same_boot);
        if (row.lines.empty() || row.lines.back().find("\"line\":\"end\"") == std::string::npos) {
            EXPECT_EQ(endings_of(lines, {"a", {"a", 1, 7, 0}}).back(), "running") << "while the daemon still does";
        }
        auto with_next = row.endings;
        with_next.emplace_back("running");
        lines.push_back(life_line("b", 1));
        EXPECT_EQ(endings_of(lines, {"b", {"b", 1, 7, 0}}), with_next);
    }
}

TEST(Power_cycles, Begin_by_the_clock_as_it_was_right_later) {
    auto const jump = R"({"line":"alive","at":5000000000,"real":1700000000000000000})";
    auto const cycles = power_cycles(records_of({life_line("a", 1), transition(1, "0,1,1"), jump}), {"b", {}});
    ASSERT_EQ(cycles.size(), 1U);
    EXPECT_EQ(cycles[0].told.stored_us, (1'700'000'000 - 5) * std::int64_t{1'000'000});
    EXPECT_EQ(cycles[0].told.end - cycles[0].told.begin, 5.0);
}

TEST(Power_cycles, Begin_when_they_did_also_where_the_machine_slept_in_its_suspends) {
    struct {
        char const* name;
        char const* of_life;               // as its line has it
        std::vector<std::int64_t> begins;  // seconds of real time
    } const rows[]{
        {"as it is recorded", R"(,"asleep":100000000000)", {101, 3'705, 5'509}},
        {"as it was", "", {3'701, 5'505, 5'509}},
    };
    auto const at = [](Number second, char const* numbers, Number asleep) {
        auto line = event_line("transition", second * k_second, numbers);
        auto const real = line.find("\"real\":") + 7;
        line.replace(real, line.find(',', real) - real, std::to_string((second + 101 + asleep) * k_second));
        return line.insert(line.size() - 1, R"(,"asleep":)" + std::to_string((100 + asleep) * k_second));
    };
    for (auto const& row : rows) {
        auto life = life_line("a", 1);
        life.insert(life.size() - 1, row.of_life);
        auto const cycles =
            power_cycles(records_of({life, at(1, "0,1,1", 0), at(2, "1,5,3", 0), at(3, "5,6,3", 0),
                                     at(4, "6,7,1", 3'600), at(5, "7,1,3", 3'600), at(6, "1,5,3", 3'600),
                                     at(7, "5,6,3", 3'600), at(8, "6,7,1", 5'400), at(9, "7,1,3", 5'400)}),
                         {"b", {}});
        std::vector<std::int64_t> begins;
        for (auto const& cycle : cycles) {
            begins.push_back(cycle.told.stored_us.value_or(0) / 1'000'000);
        }
        EXPECT_EQ(begins, row.begins) << row.name;
    }
}

TEST(Power_cycles, Tell_that_the_watchdog_was_told_nothing_any_more) {
    auto const cycles = power_cycles(records_of({life_line("a", 1), transition(1, "0,1,1"),
                                                 event_line("supervision-stopped", 2 * k_second, "0,0,0")}),
                                     {"b", {}});
    ASSERT_EQ(cycles.at(0).told.troubles.size(), 1U);
    EXPECT_EQ(cycles[0].told.troubles[0].text, "a report to the watchdog failed, and there were none from then on");
    EXPECT_EQ(cycles[0].told.troubles[0].time, 2.0);
}

TEST(Power_cycles, Tell_a_clock_that_was_set_in_the_one_in_which_it_was) {
    auto const set = [](Number second, char const* by) {
        return R"({"line":"alive","at":)" + std::to_string(second * k_second) + R"(,"real":0,"set_by":)" + by + "}";
    };
    auto const cycles = power_cycles(
        records_of({life_line("a", 1), transition(1, "0,1,1"), set(2, "-2500000000"), transition(3, "1,5,3"),
                    transition(4, "5,6,3"), transition(5, "6,7,1"), set(6, "\"none\""), set(7, "1000000000"),
                    event_line("word", 8 * k_second, "1,0,0", "running"), set(9, "-9223372036854775808")}),
        {"b", {}});
    std::vector<std::vector<std::string>> told;
    for (auto const& cycle : cycles) {
        told.emplace_back();
        for (auto const& trouble : cycle.told.troubles) {
            told.back().push_back(std::to_string(static_cast<int>(trouble.time)) + ' ' + trouble.text);
        }
    }
    EXPECT_THAT(told, ElementsAre(ElementsAre("2 the clock was set back by 2.500 s"),
                                  ElementsAre("7 the clock was set forwards by 1.000 s",
                                              "8 the word \"running\" was not written",
                                              "9 the clock was set back by 9223372036.855 s")));
}

TEST(Power_cycles, That_have_not_ended_last_until_now) {
    std::vector<std::string> const lines{life_line("a", 1), transition(1, "0,1,1")};
    auto const length = [&](Present const& present) {
        auto const told = power_cycles(records_of(lines), present).back().told;
        return told.end - told.begin;
    };
    EXPECT_EQ(length({"a", {"a", 1, 7, 0}, 9 * k_second}), 9.0);
    EXPECT_EQ(length({"b", {"b", 1, 7, 0}, 9 * k_second}), 1.0) << "another boot's now is none of it";
}

TEST(Power_cycles, Tell_what_was_held_over_a_suspend_and_who_was_late_in_it) {
    auto const s = k_second;
    auto const cycles =
        power_cycles(records_of({life_line("a", 1), transition(1, "0,1,1"), event_line("held", s, "0,0,0", "nav"),
                                 event_line("held", s, "1,0,0", "map"), event_line("released", 2 * s, "1,0,0", "map"),
                                 transition(3, "1,5,3"), event_line("group-asked", 3 * s, "2,0,0", "kPrepSD"),
                                 event_line("client-answered", 4 * s, "0,200000000,0", "quick"),
                                 event_line("client-timed-out", 8 * s, "0,0,0", "radio"),
                                 event_line("request-ended", 8 * s, "4,0,0"), transition(9, "5,6,3"),
                                 event_line("client-late", 10 * s, "0,7000000000,0", "radio"), transition(11, "6,7,1"),
                                 transition(12, "7,1,3"), end_line("killed", 13 * s)}),
                     {});
    ASSERT_EQ(cycles.size(), 2U);
    auto const& first = cycles[0].told;
    ASSERT_EQ(first.sequences.size(), 1U);
    ASSERT_EQ(first.sequences[0].groups.size(), 1U);
    EXPECT_EQ(first.sequences[0].end, 9.0);
    auto const& answers = first.sequences[0].groups[0].answers;
    ASSERT_EQ(answers.size(), 2U);
    EXPECT_EQ(answers[0].seconds, 0.2);
    EXPECT_EQ(answers[1].status, "timed out");
    EXPECT_EQ(answers[1].seconds, 7.0);
    EXPECT_EQ(first.clients.at("radio").late, 1U);
    EXPECT_EQ(first.clients.at("radio").waited, 5.0);
    for (auto const& cycle : cycles) {
        std::vector<std::string> open;
        for (auto const& hold : cycle.told.holds) {
            if (!hold.end) {
                open.push_back(hold.who);
            }
        }
        EXPECT_THAT(open, ElementsAre("nav"));
    }
}

TEST(Power_cycles, Tell_a_hold_as_one_from_its_first_request_until_nothing_is_left_of_it) {
    struct {
        char const* name;
        std::vector<std::pair<char const*, char const*>> events;  // one a second: the event, its numbers
        std::vector<std::pair<double, double>> holds;             // from, until; 0: not given up
    } const rows[]{
        {"asked for again", {{"held", "0,0,0"}, {"held", "0,0,0"}, {"released", "0,0,0"}}, {{1, 3}}},
        {"given up in part", {{"held", "1,0,0"}, {"released", "1,1,0"}, {"held", "1,0,0"}}, {{1, 0}}},
        {"and altogether", {{"held", "1,0,0"}, {"released", "1,1,0"}, {"released", "1,0,0"}}, {{1, 3}}},
        {"nothing", {{"held", "1,1,0"}}, {}},
        {"first nothing, then something", {{"held", "1,1,0"}, {"held", "1,0,0"}}, {{2, 0}}},
        {"of one kind and of another", {{"held", "0,0,0"}, {"held", "2,0,0"}, {"released", "0,0,0"}}, {{1, 3}, {2, 0}}},
        {"twice", {{"held", "0,0,0"}, {"released", "0,0,0"}, {"held", "0,0,0"}}, {{1, 2}, {3, 0}}},
    };
    for (auto const& row : rows) {
        std::vector<std::string> lines{life_line("a", 1)};
        for (auto const& [event, numbers] : row.events) {
            lines.push_back(event_line(event, lines.size() * k_second, numbers, "nav"));
        }
        std::vector<std::pair<double, double>> holds;
        auto const cycles = power_cycles(records_of(lines), {"b", {}});
        for (auto const& hold : cycles.at(0).told.holds) {
            holds.emplace_back(hold.begin, hold.end.value_or(0));
        }
        EXPECT_EQ(holds, row.holds) << row.name;
    }
}

// Beside the commands, which a trace tells of by their arrival.
TEST(Power_cycles, Tell_each_cause_in_the_words_of_a_trace) {
    struct {
        Number from;
        Number to;
        Number row;
        char const* command;
        bool uses_network;
    } const rows[]{
        {0, 1, 1, "", false},
        {0, 1, 2, "", true},
        {1, 2, 1, "NmControlled", true},
        {1, 2, 2, "NMControlledPrepareSD", true},
        {1, 5, 3, "PrepareSD", true},
        {1, 4, 4, "Shutdown", true},
        {2, 1, 1, "Run", true},
        {2, 3, 2, "", true},
        {2, 4, 3, "Shutdown", true},
        {2, 4, 4, "", true},
        {2, 5, 5, "PrepareSD", true},
        {2, 5, 6, "", true},
        {3, 2, 1, "", true},
        {3, 4, 2, "Shutdown", true},
        {3, 4, 3, "", true},
        {3, 1, 4, "Run", true},
        {3, 5, 5, "PrepareSD", true},
        {3, 5, 6, "", true},
        {5, 7, 1, "Run", true},
        {5, 6, 3, "", true},
        {6, 7, 1, "Run", true},
        {6, 4, 2, "Shutdown", true},
        {7, 4, 1, "Shutdown", true},
        {7, 1, 3, "", true},
    };
    auto const s = k_second;
    for (auto const& row : rows) {
        for (bool const is_somebody : {false, true}) {
            auto const from = std::to_string(row.from);
            std::vector<std::string> lines{life_line("a", 1)};
            trace::Situation situation{row.command, row.uses_network, {}, {}, {}};
            if (is_somebody) {
                lines.insert(lines.end(), {event_line("held", s, "0,0,0", "nav"), event_line("held", s, "0,0,0", "map"),
                                           event_line("held", s, "1,0,0", "radio"), event_line("held", s, "2,0,0", "2"),
                                           event_line("held", s, "2,0,0", "radio")});
                situation = {row.command, row.uses_network, {"nav", "map"}, {"radio", "2"}, {"tuner"}};
            }
            lines.push_back(event_line("transition", 2 * s, "1," + from + ",1"));
            lines.push_back(event_line("group-asked", 3 * s, "2,0,0", "kPrepSD"));
            lines.push_back(event_line("client-answered", 4 * s, "0,200000000,0", "quick"));
            if (is_somebody) {
                lines.push_back(event_line("client-timed-out", 4 * s, "0,0,0", "tuner"));
            }
            lines.push_back(
                event_line("transition", 5 * s, from + ',' + std::to_string(row.to) + ',' + std::to_string(row.row)));
            auto const cycles = power_cycles(records_of(lines), {"b", {}});
            EXPECT_EQ(cycles.back().told.stays.back().cause,
                      trace::cause_of(state_word(row.from), state_word(row.to), situation).text)
                << from << ' ' << row.row << is_somebody;
            EXPECT_NE(cycles.back().told.stays.back().cause, "");
        }
    }
}

TEST(Power_cycles, Tell_what_was_counted_in_each_and_nothing_twice) {
    auto const counted = [](Number second, char const* numbers) {
        return R"({"line":"counted","at":)" + std::to_string(second * k_second) + R"(,"real":0,"counts":[)" + numbers +
               "]}";
    };
    std::string begin = life_line("a", 1);
    begin.insert(begin.size() - 1, R"(,"counted":[0,0,0,0,3])");
    auto const cycles =
        power_cycles(records_of({begin, transition(1, "0,1,1"), counted(2, "1,0,0,0,3"),
                                 counted(3, R"("none",-1,0,0,2)"), transition(4, "1,5,3"), transition(5, "5,6,3"),
                                 transition(6, "6,7,1"), begin, counted(7, "3,0,0,0,4,0,0,0,0,0,0,9"), counted(8, "")}),
                     {});
    ASSERT_EQ(cycles.size(), 2U);
    auto const& first = cycles[0].told;
    auto const& second = cycles[1].told;
    ASSERT_EQ(first.troubles.size(), 1U);
    EXPECT_EQ(first.troubles[0].text, "a call of network management failed: RequestNetwork");
    EXPECT_TRUE(first.requests.empty());
    ASSERT_EQ(second.troubles.size(), 1U);
    EXPECT_EQ(second.troubles[0].text, "a call of network management failed: RequestNetwork, 2 times");
    ASSERT_EQ(second.requests.size(), 1U);
    EXPECT_EQ(second.requests[0].text, "diagnostics asked for a restart: this machine");
    EXPECT_EQ(second.requests[0].time, 7.0);
}

TEST(Records, Are_those_whole_lines_that_there_are_wherever_a_file_is_torn) {
    std::string const whole = life_line("a", 1) + "\n" + transition(1, "0,1,1") + "\n" + transition(2, "1,5,3") + "\n";
    auto const first = life_line("a", 1).size();
    for (std::size_t cut = 0; cut <= whole.size(); ++cut) {
        Records records;
        auto const text = whole.substr(0, cut);
        for (std::size_t begin = 0; begin < text.size();) {
            auto const end = std::min(text.find('\n', begin), text.size());
            add_line(records, text.substr(begin, end - begin));
            begin = end + 1;
        }
        EXPECT_LE(records.damaged, 1U);
        EXPECT_EQ(records.lives.size(), cut >= first ? 1U : 0U) << cut;
    }
}

TEST(Records, Go_on_with_a_life_that_a_new_file_begins_with) {
    auto const records = records_of({life_line("a", 1), transition(1, "0,1,1"), life_line("a", 1, 2 * k_second, 1),
                                     transition(3, "1,5,3"), life_line("a", 2)});
    ASSERT_EQ(records.lives.size(), 2U);
    EXPECT_EQ(records.lives[0].events.size(), 2U);
    auto const rest = records_of({life_line("a", 1, 2 * k_second, 1), transition(3, "1,5,3")});
    auto const cycles = power_cycles(rest, {"b", {}});
    ASSERT_EQ(cycles.size(), 1U);
    EXPECT_EQ(cycles[0].told.begin, 2.0);
    EXPECT_EQ(cycles[0].told.stays[0].state, "Running");
}

}  // namespace
}  // namespace statectl::record
