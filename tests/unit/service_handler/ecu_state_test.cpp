#include "statemanager/service_handler/ecu_state.h"

#include "support/log_capture.h"

#include <gmock/gmock.h>

namespace ximo::ap::statemanager {
namespace {

using ara::log::LogLevel;
using test_support::Log_capture;
using test_support::logged;

auto const active = logged(LogLevel::kInfo, "Ecu state based on NM activity: active");
auto const ready_sleep = logged(LogLevel::kInfo, "Ecu state based on NM activity: ready sleep");
auto const sleep_mode = logged(LogLevel::kInfo, "Ecu state based on NM activity: inactive (sleep mode)");

// Every course of six reports.
TEST(Ecu_state_test, Sleeps_from_the_second_rest_in_a_row_until_there_is_activity) {
    for (unsigned reports = 0; reports < 64; ++reports) {
        Log_capture log;
        Ecu_state sut;
        EXPECT_FALSE(sut.in_sleep_mode());
        unsigned rests = 0;
        for (unsigned report = 0; report < 6; ++report) {
            bool const is_active = (reports >> report & 1U) != 0;
            sut.update(is_active);
            rests = is_active ? 0 : rests + 1;
            EXPECT_EQ(sut.in_sleep_mode(), rests > 1) << reports << " at " << report;
            EXPECT_EQ(log.messages().back(), rests == 0 ? active : rests == 1 ? ready_sleep : sleep_mode);
        }
        EXPECT_EQ(log.messages().size(), 6U);
    }
}

}  // namespace
}  // namespace ximo::ap::statemanager
