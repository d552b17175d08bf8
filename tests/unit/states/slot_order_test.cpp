#include "statemanager/states/shutting_down_state.h"
#include "statemanager/states/state_interface.h"
#include "support/virtual_slot.h"

#include <vector>

#include <gmock/gmock.h>

namespace ximo::ap::statemanager::states {
namespace {

using test_support::virtual_slot;
using testing::ElementsAre;

TEST(Virtual_operations, Of_a_state_stand_in_the_order_of_the_interface) {
    std::vector<std::size_t> const slots{
        virtual_slot(&State_interface::entering_state), virtual_slot(&State_interface::tick),
        virtual_slot(&State_interface::exiting_state), virtual_slot(&State_interface::check_transition),
        virtual_slot(&State_interface::is_forced_shutdown)};

    EXPECT_THAT(slots, ElementsAre(1, 2, 3, 4, 5));
}

TEST(Virtual_operations, Of_shutting_down_follow_the_inherited_ones) {
    std::vector<std::size_t> const slots{virtual_slot(&Shutting_down_state::normal_shutdown),
                                         virtual_slot(&Shutting_down_state::forced_shutdown)};

    EXPECT_THAT(slots, ElementsAre(6, 7));
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
