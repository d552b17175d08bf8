#include "bench/tour/tour.h"
#include "story.h"

namespace bench::vehicle {
namespace {

class Tour : public Story {
 protected:
    std::vector<bool> seen(std::vector<tour::Step> const& steps) {
        start_and_run();
        std::vector<bool> result;
        for (auto const& finding : tour::walk(*machine, steps, std::chrono::seconds(1), {})) {
            result.push_back(finding.seen);
        }
        return result;
    }

    tour::Step const running{"it runs", [](Machine& /*vehicle*/) {}, {{Kind::state_word, "running"}}};
};

TEST_F(Tour, Does_not_see_what_does_not_happen) {
    tour::Step const step{"the wrong key",
                          [](Machine& vehicle) { vehicle.press("r"); },
                          {{Kind::log, "New command received Run"}, {Kind::state_word, "prepared4sd"}}};
    EXPECT_THAT(seen({running, step}), testing::ElementsAre(true, true, false));
}

TEST_F(Tour, Does_not_count_one_event_twice) {
    EXPECT_THAT(seen({running, running}), testing::ElementsAre(true, false));
}

TEST_F(Tour, Reaches_every_row_of_every_states_table) {
    configuration.merge_patch(tour::configuration_changes());
    options.with_network = true;
    build();
    auto const steps = tour::steps();
    auto const findings = tour::walk(*machine, steps, Machine::k_patience, std::chrono::milliseconds(50));
    for (auto const& finding : findings) {
        EXPECT_TRUE(finding.seen) << finding.step << ": " << finding.expected;
    }
    EXPECT_TRUE(tour::print_rows(steps, findings));
    EXPECT_TRUE(ends_with(0));
}

}  // namespace
}  // namespace bench::vehicle
