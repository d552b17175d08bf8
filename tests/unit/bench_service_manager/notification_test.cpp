#include "bench/service_manager/notification.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace bench::service_manager {
namespace {

using testing::ElementsAre;
using testing::Pair;

TEST(Notification_test, A_datagram_is_assignments_line_by_line) {
    EXPECT_THAT(parse_assignments("READY=1\nSTATUS=a=b\n"), ElementsAre(Pair("READY", "1"), Pair("STATUS", "a=b")));
    EXPECT_THAT(parse_assignments("WATCHDOG=1"), ElementsAre(Pair("WATCHDOG", "1")));
    EXPECT_THAT(parse_assignments("nonsense"), ElementsAre(Pair("nonsense", "")));
    EXPECT_TRUE(parse_assignments("").empty());
    EXPECT_TRUE(parse_assignments("\n\n").empty());
}

TEST(Reports_test, Reports_are_counted_and_the_last_beat_is_kept) {
    Reports sut;
    sut.count({10, 1, {{"READY", "1"}}});
    sut.count({20, 1, {{"WATCHDOG", "1"}}});
    sut.count({30, 1, {{"WATCHDOG", "1"}, {"STATUS", "x"}}});
    sut.count({40, 1, {{"STOPPING", "1"}}});
    EXPECT_EQ(sut.ready, 1U);
    EXPECT_EQ(sut.watchdog, 2U);
    EXPECT_EQ(sut.last_watchdog, 30);
    EXPECT_EQ(sut.stopping, 1U);
}

TEST(Reports_test, Only_the_value_1_counts) {
    Reports sut;
    sut.count({10, 1, {{"READY", "0"}, {"WATCHDOG", "trigger"}, {"STOPPING", ""}}});
    EXPECT_EQ(sut.ready + sut.watchdog + sut.stopping, 0U);
    EXPECT_EQ(sut.last_watchdog, 0);
}

}  // namespace
}  // namespace bench::service_manager
