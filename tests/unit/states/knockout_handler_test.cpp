#include "statemanager/states/knockout_handler.h"

#include <gtest/gtest.h>

namespace ximo::ap::statemanager::states {
namespace {

TEST(Knockout_handler, Expires_after_exactly_its_count_of_cycles) {
    Knockout_handler sut(3);
    for (unsigned left = 3; left > 0; --left) {
        EXPECT_FALSE(sut.is_knockout_timer_expired());
        EXPECT_EQ(sut.get_knockout_timer_value(), left);
        sut.update_knockout_timer();
    }
    EXPECT_TRUE(sut.is_knockout_timer_expired());
}

TEST(Knockout_handler, Stays_at_zero) {
    Knockout_handler sut(1);
    sut.update_knockout_timer();
    sut.update_knockout_timer();
    EXPECT_EQ(sut.get_knockout_timer_value(), 0U);
}

TEST(Knockout_handler, Is_refilled_by_a_reset) {
    Knockout_handler sut(2);
    sut.update_knockout_timer();
    sut.reset_knockout_timer();
    EXPECT_EQ(sut.get_knockout_timer_value(), 2U);
}

TEST(Knockout_handler, Of_zero_cycles_is_expired_from_the_start) {
    Knockout_handler sut(0);
    EXPECT_TRUE(sut.is_knockout_timer_expired());
    sut.reset_knockout_timer();
    EXPECT_TRUE(sut.is_knockout_timer_expired());
}

}  // namespace
}  // namespace ximo::ap::statemanager::states
