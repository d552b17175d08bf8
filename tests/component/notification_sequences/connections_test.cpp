// Both sequences with clients that are not there, or come in the middle.

#include "sequence_fixture.h"

namespace sequences {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;
using testing::UnorderedElementsAre;

class Sequence_without_clients : public Sequence_test, public testing::WithParamInterface<Way> {};

TEST_P(Sequence_without_clients, Ends_at_once) {
    EXPECT_LT(run(GetParam()), time_out);
    EXPECT_THAT(results(), IsEmpty());
}

TEST_P(Sequence_without_clients, Ends_at_once_also_in_groups_that_nobody_is_in) {
    connect(k_radio);
    EXPECT_LT(run(GetParam()), time_out);
    EXPECT_THAT(clients.asked(), ElementsAre(Asked{k_radio, mode_of(GetParam())}));
}

class Sequence_with_two_applications : public Sequence_test, public testing::WithParamInterface<Way> {};

TEST_P(Sequence_with_two_applications, Asks_them_together_and_takes_each_answer) {
    connect(k_radio, Manner::fails);
    connect("seat");
    EXPECT_LT(run(GetParam()), time_out);
    EXPECT_THAT(clients.asked(),
                UnorderedElementsAre(Asked{k_radio, mode_of(GetParam())}, Asked{"seat", mode_of(GetParam())}));
    EXPECT_THAT(results(), ElementsAre(Pair(k_radio, Component_client_return_type::general_error),
                                       Pair("seat", Component_client_return_type::succeeded)));
}

class Sequence_with_a_client_that_joins : public Sequence_test, public testing::WithParamInterface<Way> {
 protected:
    /// `name` joins when `moment` has been asked and has not answered yet.
    void join(std::string const& name, std::string const& moment) {
        clients.before_answer = [this, name, moment](Asked const& asked) {
            if (asked.name == moment) {
                connect(name);
            }
        };
    }
    std::string first() const { return whole_sequence(GetParam()).front().name; }
    std::string last() const { return whole_sequence(GetParam()).back().name; }
};

TEST_P(Sequence_with_a_client_that_joins, Asks_it_when_its_group_is_still_to_come) {
    connect(first());
    join(last(), first());
    EXPECT_LT(run(GetParam()), time_out);
    EXPECT_THAT(clients.asked(), ElementsAre(Asked{first(), mode_of(GetParam())}, Asked{last(), mode_of(GetParam())}));
}

TEST_P(Sequence_with_a_client_that_joins, Neither_asks_it_nor_waits_for_it_when_its_group_is_being_asked) {
    connect_all();
    join("late", k_radio);
    EXPECT_LT(run(GetParam()), time_out);
    EXPECT_THAT(clients.asked(), ElementsAreArray(whole_sequence(GetParam())));
    EXPECT_THAT(results(), Not(Contains(testing::Key("late"))));
}

TEST_P(Sequence_with_a_client_that_joins, Does_not_turn_back_for_it_when_its_group_is_done) {
    connect_all();
    join("late", last());
    EXPECT_LT(run(GetParam()), time_out);
    EXPECT_THAT(clients.asked(), ElementsAreArray(whole_sequence(GetParam())));
}

auto const k_name_of_way = [](auto const& test) { return testing::PrintToString(test.param); };
INSTANTIATE_TEST_SUITE_P(, Sequence_without_clients, testing::Values(Way::standby, Way::resume), k_name_of_way);
INSTANTIATE_TEST_SUITE_P(, Sequence_with_two_applications, testing::Values(Way::standby, Way::resume), k_name_of_way);
INSTANTIATE_TEST_SUITE_P(, Sequence_with_a_client_that_joins, testing::Values(Way::standby, Way::resume),
                         k_name_of_way);

}  // namespace
}  // namespace sequences
