#include "udp_nm_fixture.h"

#include <functional>

namespace ximo::ap::statemanager {
namespace {

class Network_state_field : public Udp_nm_test {
 protected:
    void note_states() {
        sut->set_network_state_updated_func(
            [this](std::vector<std::uint8_t> const& state) { states.push_back(bitvector2str(state)); });
    }
    void find() {
        network_state.OfferService();
        search();
    }

    std::vector<std::string> states;
};

TEST_F(Network_state_field, Hands_every_state_on_also_one_that_repeats_the_one_before) {
    note_states();
    find();

    network_state.NetworkState.Update({0x00, 0x01});
    network_state.NetworkState.Update({0x00, 0x00});
    network_state.NetworkState.Update({0x00, 0x00});

    EXPECT_THAT(states, ElementsAre("00 01 ", "00 00 ", "00 00 "));
}

TEST_F(Network_state_field, Hands_the_state_on_that_is_there_when_the_service_is_found) {
    note_states();
    network_state.NetworkState.Update({0x40});
    find();

    EXPECT_THAT(states, ElementsAre("40 "));
}

TEST_F(Network_state_field, Is_quiet_before_the_service_is_found) {
    note_states();

    sut->network_state_field_updated();

    EXPECT_THAT(states, IsEmpty());
}

TEST_F(Network_state_field, Is_quiet_when_nothing_new_has_come) {
    note_states();
    find();
    network_state.NetworkState.Update({0x01});

    sut->network_state_field_updated();

    EXPECT_THAT(states, ElementsAre("01 "));
}

TEST_F(Network_state_field, Needs_somebody_to_hand_it_to) {
    find();

    EXPECT_THROW(network_state.NetworkState.Update({0x01}), std::bad_function_call);
}

TEST_F(Network_state_field, Goes_to_the_callback_that_was_set_last) {
    auto const held = std::make_shared<int>(0);
    sut->set_network_state_updated_func([held](auto const&) { ++*held; });
    find();
    ASSERT_EQ(held.use_count(), 2);

    note_states();
    network_state.NetworkState.Update({0x01});

    EXPECT_EQ(held.use_count(), 1);
    EXPECT_EQ(*held, 0);
    EXPECT_THAT(states, ElementsAre("01 "));
}

TEST_F(Network_state_field, Keeps_coming_after_the_service_was_away) {
    note_states();
    find();
    network_state.StopOfferService();

    network_state.OfferService();
    network_state.NetworkState.Update({0x01});

    EXPECT_THAT(states, Contains("01 "));
}

}  // namespace
}  // namespace ximo::ap::statemanager
