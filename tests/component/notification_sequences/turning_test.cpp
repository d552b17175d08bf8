// A second request in the middle of a sequence, at each of its steps.

#include "sequence_fixture.h"

#include <utility>

namespace sequences {
namespace {

using testing::ElementsAreArray;

/// Another request comes when a client has been asked in the first sequence and has not answered yet.
class Sequence_that_is_interrupted : public Sequence_test, public testing::WithParamInterface<char const*> {
 protected:
    void begin_at(std::string const& moment, Way way) {
        clients.before_answer = [this, moment, way, is_over = false](Asked const& asked) mutable {
            if (asked.name == moment && !std::exchange(is_over, true)) {
                begin(way);
            }
        };
    }

    /// What is asked in the first sequence up to and including the client.
    static std::vector<Asked> up_to(std::string const& name, Way way) {
        auto asked = whole_sequence(way);
        asked.erase(std::next(std::find(asked.begin(), asked.end(), Asked{name, mode_of(way)})), asked.end());
        return asked;
    }

    static std::vector<Asked> join(std::vector<Asked> first, std::vector<Asked> const& second) {
        first.insert(first.end(), second.begin(), second.end());
        return first;
    }
};

// The one whose turn it is goes back first, then those that were asked before it.
TEST_P(Sequence_that_is_interrupted, Standby_turns_back_where_it_is_when_a_resume_comes) {
    connect_all();
    begin_at(GetParam(), Way::resume);
    auto const whole_resume = whole_sequence(Way::resume);
    auto const from = std::find(whole_resume.begin(), whole_resume.end(), Asked{GetParam(), "kOn"});

    EXPECT_LT(run(Way::standby), time_out);

    EXPECT_THAT(clients.asked(), ElementsAreArray(join(up_to(GetParam(), Way::standby), {from, whole_resume.end()})));
    for (auto const* name : {k_dcm, k_radio, k_dem}) {
        EXPECT_NE(clients.last_asked_of(name), "kPrepSD") << name << " would sleep on a running machine";
    }
}

TEST_P(Sequence_that_is_interrupted, Standby_starts_again_when_a_second_standby_comes) {
    connect_all();
    begin_at(GetParam(), Way::standby);

    EXPECT_LT(run(Way::standby), time_out);

    EXPECT_THAT(clients.asked(), ElementsAreArray(join(up_to(GetParam(), Way::standby), whole_sequence(Way::standby))));
}

TEST_P(Sequence_that_is_interrupted, Resume_gives_way_to_a_standby) {
    connect_all();
    begin_at(GetParam(), Way::standby);

    EXPECT_LT(run(Way::resume), time_out);

    EXPECT_THAT(clients.asked(), ElementsAreArray(join(up_to(GetParam(), Way::resume), whole_sequence(Way::standby))));
}

TEST_P(Sequence_that_is_interrupted, Resume_goes_on_when_a_second_resume_comes) {
    connect_all();
    begin_at(GetParam(), Way::resume);

    EXPECT_LT(run(Way::resume), time_out);

    EXPECT_THAT(clients.asked(), ElementsAreArray(whole_sequence(Way::resume)));
}

INSTANTIATE_TEST_SUITE_P(At, Sequence_that_is_interrupted, testing::Values(k_dcm, k_radio, k_dem),
                         [](auto const& test) { return last_word(test.param); });

}  // namespace
}  // namespace sequences
