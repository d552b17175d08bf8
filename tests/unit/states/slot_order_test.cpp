#include "statemanager/states/shutting_down_state.h"
#include "statemanager/states/state_interface.h"
#include "support/virtual_slot.h"

#include <vector>

#include <gmock/gmock.h>

namespace ximo::ap::statemanager::states {
namespace {

TEST(Virtual_operations, Of_a_state_stand_in_the_order_of_the_interface) {
    test_support::expect_slots_from(1, &State_interface::entering_state, &State_interface::tick,
                                    &State_interface::exiting_state, &State_interface::check_transition,
                                    &State_interface::is_forced_shutdown);
}

TEST(Virtual_operations, Of_shutting_down_follow_the_inherited_ones) {
    test_support::expect_slots_from(6, &Shutting_down_state::normal_shutdown, &Shutting_down_state::forced_shutdown);
}

TEST(State_of, An_id_is_the_state_of_that_number_and_any_other_number_is_shutting_down) {
    for (unsigned id = 0; id < 8; ++id) {
        EXPECT_EQ(state_of(id), id);
    }
    for (unsigned const id : {9U, 42U, 4294967295U}) {
        EXPECT_EQ(state_of(id), k_shutting_down) << id;
    }
}

}  // namespace
}  // namespace ximo::ap::statemanager::states
