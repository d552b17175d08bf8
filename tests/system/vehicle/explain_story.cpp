#include "story.h"
#include "tools/trace/narrator.h"
#include "tools/trace/summary.h"

#include <sstream>
#include <utility>

namespace bench::vehicle {
namespace {

using testing::ElementsAre;
using testing::MatchesRegex;

class Explanation : public Story {
 protected:
    Explanation() { options.trace = &trace; }

    // What the trace tells once the machine has gone.
    statectl::trace::Story told() {
        finish();
        dlt::Reader reader;
        statectl::trace::Narrator narrator;
        reader.add(trace.str());
        reader.end();
        while (auto message = reader.next()) {
            narrator.hear(std::move(*message));
        }
        return narrator.end(reader);
    }

    std::ostringstream trace;
};

TEST_F(Explanation, Of_a_trace_tells_what_the_machine_did_and_whom_it_waited_for) {
    settings()["ApplicationSuspendRequestTimeout"] = 1;
    start_and_run();
    for (auto const* const client : {"diag::dcm", "navigation", "radio", "diag::dem"}) {
        ASSERT_TRUE(sees(Kind::client, std::string(client) + " connected kOn"));
    }
    machine->tell("radio", {{"do", "behave"}, {"as", "silent"}});
    machine->press("p");
    ASSERT_TRUE(sees(Kind::state_word, "prepared4sd"));
    machine->signal_daemon(SIGTERM);
    ASSERT_TRUE(ends_with(0));
    ASSERT_TRUE(logs("AP_StateManger daemon shutting down"));

    auto const story = told();
    ASSERT_EQ(story.lives.size(), 1U);
    auto const& life = story.lives.front();
    std::vector<std::string> states;
    for (auto const& stay : life.stays) {
        states.push_back(stay.state + ": " + stay.cause);
    }
    EXPECT_THAT(states, ElementsAre("Starting up: start", "Running: network management is not used",
                                    "Preparing: command PrepareSD", "PreparedSD: radio did not answer in time"));
    ASSERT_EQ(life.sequences.size(), 1U);
    EXPECT_THAT(sentence_of(life.sequences.front(), life),
                MatchesRegex("the suspend took .*: DCM .*, applications [1-9].* \\(radio timed out\\), DEM .*"));
    EXPECT_EQ(life.ending, "was stopped");
    EXPECT_EQ(story.skipped_bytes, 0U);
}

}  // namespace
}  // namespace bench::vehicle
