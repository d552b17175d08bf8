// Both sequences, with each client in turn doing what it should not: the order stays, nobody else is disturbed, and the
// sequence ends in the time that clients may take.

#include "sequence_fixture.h"

#include <tuple>

namespace sequences {
namespace {

using testing::Combine;
using testing::ElementsAreArray;
using testing::Values;

bool is_waited_for(Manner manner) {
    return manner == Manner::is_silent || manner == Manner::disconnects;
}

class Sequence_with_one_client_that : public Sequence_test,
                                      public testing::WithParamInterface<std::tuple<Manner, Way, char const*>> {
 protected:
    Sequence_with_one_client_that()
        : Sequence_test(is_waited_for(std::get<0>(GetParam())) ? std::chrono::seconds(1) : std::chrono::seconds(10)) {}

    Manner const manner{std::get<0>(GetParam())};
    Way const way{std::get<1>(GetParam())};
    std::string const who{std::get<2>(GetParam())};

    static Component_client_return_type status_of(Manner manner) {
        switch (manner) {
            case Manner::obeys:
                return Component_client_return_type::succeeded;
            case Manner::fails:
                return Component_client_return_type::general_error;
            default:
                return Component_client_return_type::timed_out;
        }
    }
};

TEST_P(Sequence_with_one_client_that, Asks_all_in_their_order_and_ends) {
    Client_results expected;
    for (std::string const name : {k_dcm, k_radio, k_dem}) {
        connect(name, name == who ? manner : Manner::obeys);
        expected[name] = status_of(name == who ? manner : Manner::obeys);
    }

    auto const time = run(way);

    EXPECT_THAT(clients.asked(), ElementsAreArray(whole_sequence(way)));
    EXPECT_EQ(results(), expected);
    EXPECT_EQ(time >= time_out, is_waited_for(manner)) << std::chrono::duration<double>(time).count() << " s";
}

std::string name_of(testing::TestParamInfo<std::tuple<Manner, Way, char const*>> const& test) {
    auto const& [manner, way, who] = test.param;
    return testing::PrintToString(manner) + "_in_a_" + testing::PrintToString(way) + "_as_" + last_word(who);
}

INSTANTIATE_TEST_SUITE_P(, Sequence_with_one_client_that,
                         Combine(Values(Manner::obeys, Manner::fails, Manner::is_silent, Manner::disconnects),
                                 Values(Way::standby, Way::resume), Values(k_dcm, k_radio, k_dem)),
                         name_of);

}  // namespace
}  // namespace sequences
