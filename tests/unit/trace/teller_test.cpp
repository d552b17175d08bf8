#include "dlt_bytes.h"
#include "told.h"
#include "tools/trace/summary.h"

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace trace_test {
namespace {

using statectl::trace::Life;
using statectl::trace::Story;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

std::vector<std::string> states_of(Life const& life) {
    std::vector<std::string> texts;
    for (auto const& stay : life.stays) {
        texts.push_back(stay.state + ": " + stay.cause);
    }
    return texts;
}

std::vector<std::string> texts_of(std::vector<statectl::trace::Remark> const& remarks) {
    std::vector<std::string> texts;
    for (auto const& remark : remarks) {
        texts.push_back(remark.text);
    }
    return texts;
}

std::vector<std::string> sentences_of(Life const& life) {
    std::vector<std::string> texts;
    for (auto const& sequence : life.sequences) {
        texts.push_back(sentence_of(sequence, life));
    }
    return texts;
}

TEST(A_life, Has_states_with_their_causes) {
    auto const story = told(suspend_by_key());
    ASSERT_THAT(story.lives, SizeIs(1));
    EXPECT_THAT(states_of(story.lives[0]),
                ElementsAre("Starting up: start", "Running: the network manager's services were found",
                            "Preparing: command PrepareSD", "PreparedSD: radio did not answer in time",
                            "Shutting down: command Shutdown"));
    EXPECT_EQ(story.lives[0].ending, "was powered off the fast way");
    EXPECT_TRUE(story.lives[0].is_orderly);
}

TEST(A_life, Is_told_alike_where_another_application_says_the_same_between_its_messages) {
    std::vector<Words> mixed;
    for (auto const& line : suspend_by_key()) {
        mixed.push_back(line);
        for (auto const& foreign : suspend_by_key()) {
            mixed.push_back({foreign.arguments, line.time, 4, "RADI", 77});
        }
    }
    auto const story = told(mixed);
    auto const alone = told(suspend_by_key());
    ASSERT_THAT(story.lives, SizeIs(1));
    EXPECT_EQ(states_of(story.lives[0]), states_of(alone.lives[0]));
    EXPECT_EQ(sentences_of(story.lives[0]), sentences_of(alone.lives[0]));
    EXPECT_EQ(story.lives[0].ending, alone.lives[0].ending);
    EXPECT_EQ(story.lives[0].clients.at("radio").late, 1U);
}

TEST(A_suspend, Is_the_sum_of_its_groups) {
    auto const story = told(suspend_by_key());
    EXPECT_THAT(sentences_of(story.lives[0]),
                ElementsAre("the suspend took 9.0 s: DCM 0.100 s, applications 8.8 s (radio timed out), DEM 0.100 s"));
    auto const& radio = story.lives[0].clients.at("radio");
    EXPECT_EQ(radio.late, 1U);
    EXPECT_EQ(radio.out_of_turn, 1U);
    EXPECT_DOUBLE_EQ(radio.waited, 8.8);
    EXPECT_EQ(story.lives[0].clients.at("navigation").succeeded, 1U);
}

TEST(A_suspend, Lasts_until_its_state_is_reached_and_a_resume_does_as_well) {
    auto lines = start();
    add(lines, {{2.0, {"AP_StateManger transition from", "Running", " to ", "Preparing"}},
                {2.0, {"Starting standby sequence"}},
                {2.0, {"Requesting ", "kPrepSD", " mode for DEM"}},
                {2.5, {"Received DEM client completion notification for ", "kPrepSD", ". Status: ", "0"}},
                {3.0, {"AP_StateManger transition from", "Preparing", " to ", "PreparedSD"}},
                {4.0, {"AP_StateManger transition from", "PreparedSD", " to ", "Resuming"}},
                {4.0, {"Starting resume sequence"}},
                {4.0, {"Requesting ", "kOn", " mode for DCM"}},
                {4.25, {"Received DCM client completion notification for ", "kOn", ". Status: ", "0"}},
                {4.5, {"AP_StateManger transition from", "Resuming", " to ", "Running"}}});
    EXPECT_THAT(sentences_of(told(lines).lives[0]),
                ElementsAre("the suspend took 1.0 s: DEM 0.500 s, between and after them 0.500 s",
                            "the resume took 0.500 s: DCM 0.250 s, between and after them 0.250 s"));
}

TEST(A_suspend, That_is_turned_back_is_not_finished) {
    auto lines = start();
    add(lines, {{2.0, {"New command received", "PrepareSD"}},
                {2.0, {"AP_StateManger transition from", "Running", " to ", "Preparing"}},
                {2.0, {"Starting standby sequence"}},
                {2.0, {"Requesting ", "kPrepSD", " mode for DCM"}},
                {2.0, {"Consumed VirtIO command: ", "PrepareSD"}},
                {2.5, {"New command received", "Run"}},
                {2.5, {"AP_StateManger transition from", "Preparing", " to ", "Resuming"}},
                {2.5, {"Starting resume sequence"}},
                {2.5, {"Consumed VirtIO command: ", "Run"}}});
    auto const story = told(lines);
    EXPECT_THAT(sentences_of(story.lives[0]),
                ElementsAre("the suspend was not finished: DCM 0.500 s", "the resume was not finished"));
    EXPECT_THAT(story.lives[0].dropped, IsEmpty());
}

TEST(A_command, That_no_state_acts_on_is_told) {
    auto lines = start();
    add(lines, {{2.0, {"New command received", "Run"}},
                {2.1, {"New command received", "NmControlled"}},
                {2.2, {"New command received", "Shutdown"}},
                {2.3, {"AP_StateManger transition from", "Running", " to ", "Shutting down"}},
                {2.3, {"Normal shutdown executed"}},
                {2.3, {"Consumed VirtIO command: ", "Shutdown"}},
                {2.4, {"AP_StateManger reporting kTerminating to EM"}}});
    auto const story = told(lines);
    EXPECT_THAT(texts_of(story.lives[0].dropped),
                ElementsAre("Run: Shutdown overtook it", "NmControlled: Shutdown overtook it"));
    EXPECT_EQ(story.lives[0].ending, "went down");
}

TEST(A_command, That_another_transition_takes_along_is_told) {
    auto lines = start();
    add(lines, {{2.0, {"New command received", "NmControlled"}},
                {2.0, {"AP_StateManger transition from", "Running", " to ", "NM Controlled"}},
                {2.0, {"Consumed VirtIO command: ", "NmControlled"}},
                {3.0, {"New command received", "NMControlledPrepareSD"}},
                {4.0, {"State_manager::ecu_alive_request: ", "radio"}},
                {5.0, {"AP_StateManger transition from", "NM Controlled", " to ", "Post Run"}},
                {5.0, {"Consumed VirtIO command: ", "NMControlledPrepareSD"}},
                {6.0, {"New command received", "NmControlled"}}});
    auto const story = told(lines);
    EXPECT_THAT(texts_of(story.lives[0].dropped),
                ElementsAre("NMControlledPrepareSD: the transition to Post Run took it along",
                            "NmControlled: no state acted on it"));
    EXPECT_EQ(story.lives[0].stays.back().cause, "the network was asleep, and radio kept the ECU alive");
}

TEST(A_hold, Ends_when_its_last_bit_is_released) {
    auto lines = start();
    add(lines, {{2.0, {"State_manager::handle_com_alive_request(", "1", ", ", "07 00 01 ", ", ", "3", ")"}},
                {3.0, {"State_manager::handle_com_alive_request(", "1", ", ", "00 10 00 ", ", ", "3", ")"}},
                {4.0, {"State_manager::handle_com_alive_release(", "1", ", ", "ff 00 ff ", ")"}},
                {5.0, {"State_manager::handle_com_alive_release(", "1", ", ", "00 10 ", ")"}},
                {6.0, {"State_manager::handle_cwu_request(", "1", ", ", "3", ")"}},
                {7.0, {"State_manager::ecu_alive_request: ", "End standby call"}}});
    auto const holds = told(lines).lives[0].holds;
    ASSERT_THAT(holds, SizeIs(2));
    EXPECT_EQ(holds[0].what, "communication");
    EXPECT_EQ(holds[0].begin, 2.0);
    EXPECT_EQ(holds[0].end, 5.0);
    EXPECT_EQ(holds[1].what, "car wake-up");
    EXPECT_FALSE(holds[1].end);
}

TEST(A_trace_of_several_lives, Tells_those_apart_and_who_went_without_farewell) {
    auto lines = start();
    for (auto line : start()) {
        line.process = 2;
        line.stored += 100;
        lines.push_back(line);
    }
    lines.push_back({{"Engine is hot"}, 9, 2, "ENGI", 5});
    auto const story = told(lines);
    ASSERT_THAT(story.lives, SizeIs(2));
    EXPECT_EQ(story.lives[0].ending, "ended without farewell in Running");
    EXPECT_FALSE(story.lives[0].is_orderly);
    EXPECT_EQ(story.lives[1].ending, "the trace ends in Running");
    EXPECT_TRUE(story.lives[1].is_orderly);
    EXPECT_THAT(story.lives[1].troubles, IsEmpty());
    EXPECT_EQ(story.messages, lines.size());
}

TEST(A_trace_of_a_ring, Is_put_into_order) {
    auto const lines = suspend_by_key();
    for (std::size_t seam = 1; seam < lines.size(); ++seam) {
        auto ring = lines;
        for (std::size_t i = 0; i < ring.size(); ++i) {
            ring[i].stored += static_cast<std::int64_t>(10 * i);
        }
        std::rotate(ring.begin(), ring.begin() + static_cast<std::ptrdiff_t>(seam), ring.end());
        auto const story = told(ring);
        ASSERT_THAT(story.lives, SizeIs(1)) << seam;
        ASSERT_EQ(states_of(story.lives[0]), states_of(told(lines).lives[0])) << seam;
    }
}

TEST(A_trace_that_begins_late, Begins_with_the_state_that_was_left_first) {
    auto lines = suspend_by_key();
    lines.erase(lines.begin(), lines.begin() + 5);
    auto const life = told(lines).lives[0];
    EXPECT_FALSE(life.has_start);
    EXPECT_EQ(life.stays.front().state, "Running");
    EXPECT_EQ(life.stays.front().cause, "before the trace");
}

TEST(A_clock_of_32_bits, Begins_anew_without_a_new_life) {
    constexpr double k_wrap = 429'496.7296;
    auto lines = start();
    for (auto& line : lines) {
        line.time += k_wrap - 2;
    }
    lines.push_back({{"AP_StateManger transition from", "Running", " to ", "NM Controlled"}, 1.0});
    auto const story = told(lines);
    ASSERT_THAT(story.lives, SizeIs(1));
    EXPECT_NEAR(story.lives[0].end - story.lives[0].begin, 2.5, 0.01);
}

TEST(A_clock_of_32_bits, Begins_anew_once_although_two_messages_stand_in_the_other_order) {
    constexpr double k_wrap = 429'496.7296;
    auto lines = start();
    auto const begin = lines.front().time;
    for (auto& line : lines) {
        line.time += k_wrap - 2;
    }
    lines.push_back({{"AP_StateManger transition from", "Running", " to ", "NM Controlled"}, 0.0001});
    lines.push_back({{"another thread's"}, k_wrap - 0.0001});
    lines.push_back({{"AP_StateManger transition from", "NM Controlled", " to ", "Running"}, 1.0});
    auto const story = told(lines);
    ASSERT_THAT(story.lives, SizeIs(1));
    EXPECT_NEAR(story.lives[0].end - story.lives[0].begin, 3 - begin, 0.01);
}

TEST(A_power_cycle, Ends_with_its_suspend) {
    auto lines = start();
    add(lines, {{2.0, {"AP_StateManger transition from", "Running", " to ", "Preparing"}},
                {3.0, {"AP_StateManger transition from", "Preparing", " to ", "PreparedSD"}},
                {9.0, {"AP_StateManger transition from", "PreparedSD", " to ", "Resuming"}},
                {9.5, {"AP_StateManger transition from", "Resuming", " to ", "Running"}}});
    auto const story = told(lines);
    auto const cycles = cycles_of(story.lives[0]);
    ASSERT_THAT(cycles, SizeIs(2));
    EXPECT_EQ(cycles[0].end, 9.0);
    EXPECT_EQ(cycles[1].begin, 9.0);
}

// A piece of what a tour of the virtual vehicle logged; traces/make made it. It ends in the middle of a message.
TEST(A_real_trace, Tells_the_tours_first_life) {
    std::ifstream file(TRACES "/tour.dlt", std::ios::binary);
    std::string const bytes{std::istreambuf_iterator<char>(file), {}};
    auto const story = story_of(bytes);

    EXPECT_TRUE(story.is_cut);
    ASSERT_THAT(story.lives, SizeIs(testing::Ge(2)));
    auto const& life = story.lives[0];
    EXPECT_THAT(states_of(life), ElementsAre("Starting up: start", "Running: the network manager's services were found",
                                             "NM Controlled: command NmControlled", "Running: command Run",
                                             "NM Controlled: command NmControlled",
                                             "Post Run: the network was asleep, and \"2\" kept the ECU alive",
                                             "NM Controlled: \"1\" kept communication alive",
                                             "Post Run: the network was asleep, and \"2\" kept the ECU alive",
                                             "Running: command Run", "NM Controlled: command NmControlled",
                                             "Post Run: the network was asleep, and \"2\" kept the ECU alive",
                                             "Preparing: command PrepareSD", "PreparedSD: all clients had answered",
                                             "Resuming: command Run", "Running: all clients had answered",
                                             "NM Controlled: command NmControlled", "Preparing: command PrepareSD",
                                             "Resuming: command Run", "Shutting down: command Shutdown"));
    EXPECT_THAT(life.sequences, SizeIs(4));
    EXPECT_THAT(life.dropped, IsEmpty());
    EXPECT_EQ(life.ending, "went down");
    EXPECT_TRUE(life.has_start);
}

}  // namespace
}  // namespace trace_test
