#include "statemanager/service_handler/ecu_state.h"

#include "support/log_capture.h"

#include <gmock/gmock.h>

namespace ximo::ap::statemanager {
namespace {

using ara::log::LogLevel;
using test_support::Log_capture;
using test_support::logged;
using testing::ElementsAre;

auto const active = logged(LogLevel::kInfo, "Ecu state based on NM activity: active");
auto const ready_sleep = logged(LogLevel::kInfo, "Ecu state based on NM activity: ready sleep");
auto const sleep_mode = logged(LogLevel::kInfo, "Ecu state based on NM activity: inactive (sleep mode)");

TEST(Ecu_state_test, Is_awake_before_the_first_report) {
    EXPECT_FALSE(Ecu_state().in_sleep_mode());
}

TEST(Ecu_state_test, Sleeps_with_the_second_rest_in_a_row) {
    Log_capture log;
    Ecu_state sut;

    sut.update(false);
    EXPECT_FALSE(sut.in_sleep_mode());
    sut.update(false);
    EXPECT_TRUE(sut.in_sleep_mode());

    EXPECT_THAT(log.messages(), ElementsAre(ready_sleep, sleep_mode));
}

TEST(Ecu_state_test, Stays_asleep_with_every_further_rest) {
    Ecu_state sut;
    sut.update(false);
    sut.update(false);
    Log_capture log;

    sut.update(false);

    EXPECT_TRUE(sut.in_sleep_mode());
    EXPECT_THAT(log.messages(), ElementsAre(sleep_mode));
}

TEST(Ecu_state_test, Counts_anew_after_activity_between_two_rests) {
    Log_capture log;
    Ecu_state sut;

    sut.update(false);
    sut.update(true);
    sut.update(false);
    EXPECT_FALSE(sut.in_sleep_mode());

    EXPECT_THAT(log.messages(), ElementsAre(ready_sleep, active, ready_sleep));
}

TEST(Ecu_state_test, Is_woken_by_activity) {
    Ecu_state sut;
    sut.update(false);
    sut.update(false);

    sut.update(true);

    EXPECT_FALSE(sut.in_sleep_mode());
}

}  // namespace
}  // namespace ximo::ap::statemanager
