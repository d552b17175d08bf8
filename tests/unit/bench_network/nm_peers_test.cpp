#include "nm_fixture.h"

namespace bench::network {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Nm_peers_test : public Nm_fixture {};

TEST_F(Nm_peers_test, Requests_that_are_not_repeated_are_forgotten_and_the_bus_goes_to_sleep) {
    hear_during(1'000, {0, 1});
    take_doings();
    pass(149);
    EXPECT_THAT(take_doings(), IsEmpty());
    pass(1);
    EXPECT_THAT(take_doings(), ElementsAre("[00 00]"));
    pass(150);
    EXPECT_THAT(take_doings(), ElementsAre("prepare bus sleep"));
    pass(200);
    EXPECT_THAT(take_doings(), ElementsAre("bus sleep", "[00 00]"));
}

TEST_F(Nm_peers_test, Requests_of_one_node_are_forgotten_while_another_goes_on) {
    hear({1}, Control_bit::partial_network, 2);
    hear({2}, Control_bit::partial_network, 3);
    pass(200);
    hear({2}, Control_bit::partial_network, 3);
    pass(50);
    EXPECT_THAT(sut.network_state(), ElementsAre(2, 0));
}

TEST_F(Nm_peers_test, A_node_that_asks_for_less_is_believed_at_once) {
    hear({3});
    hear({1});
    EXPECT_THAT(sut.network_state(), ElementsAre(1, 0));
}

TEST_F(Nm_peers_test, Nothing_is_requested_by_others_once_the_bus_prepares_for_sleep) {
    Nm_node slow{k_id,
                 2,
                 {std::chrono::milliseconds(100), std::chrono::milliseconds(300), std::chrono::milliseconds(400),
                  std::chrono::milliseconds(200), std::chrono::milliseconds(90'000)},
                 environment};
    slow.receive({k_other, Control_bit::partial_network, {1, 0}, {}}, now);
    take_doings();
    slow.advance(now);
    slow.advance(now + std::chrono::milliseconds(300));
    slow.advance(now + std::chrono::seconds(2));
    EXPECT_THAT(take_doings(), ElementsAre("ready sleep", "prepare bus sleep", "[00 00]", "bus sleep", "[00 00]"));
}

TEST_F(Nm_peers_test, Its_own_messages_coming_back_are_ignored) {
    hear({1}, Control_bit::partial_network, k_id);
    EXPECT_EQ(sut.state(), Nm_state::bus_sleep);
    EXPECT_THAT(sut.peers(), IsEmpty());
}

}  // namespace
}  // namespace bench::network
