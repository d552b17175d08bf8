#include "ara/com/dds/entities/quality.h"

#include <chrono>
#include <cstdint>

#include <gtest/gtest.h>

namespace com_unit {
namespace {

using namespace ara::com::dds;  // NOLINT(google-build-using-namespace): what is tested is a part of it

struct Channel_quality {
    char const* of;
    Quality quality;
    dds_durability_kind_t durability;
    dds_history_kind_t history;
    std::int32_t depth;
    std::chrono::milliseconds longest_write;
};

// The depth of a history that keeps all counts for nothing.
TEST(Quality_test, Of_each_channel_is_the_one_of_the_wire) {
    using std::chrono::milliseconds;
    Channel_quality const rows[] = {
        {"calls", call_quality(milliseconds(7)), DDS_DURABILITY_VOLATILE, DDS_HISTORY_KEEP_ALL, 0, milliseconds(7)},
        {"offers", offer_quality(), DDS_DURABILITY_TRANSIENT_LOCAL, DDS_HISTORY_KEEP_LAST, 1, k_longest_write},
        {"events, written", event_writer_quality(false), DDS_DURABILITY_VOLATILE, DDS_HISTORY_KEEP_LAST,
         k_newest_samples, k_longest_write},
        {"events, read", event_reader_quality(false), DDS_DURABILITY_VOLATILE, DDS_HISTORY_KEEP_ALL, 0,
         k_longest_write},
        {"fields, written", event_writer_quality(true), DDS_DURABILITY_TRANSIENT_LOCAL, DDS_HISTORY_KEEP_LAST,
         k_newest_samples, k_longest_write},
        {"fields, read", event_reader_quality(true), DDS_DURABILITY_TRANSIENT_LOCAL, DDS_HISTORY_KEEP_ALL, 0,
         k_longest_write},
    };
    for (auto const& row : rows) {
        SCOPED_TRACE(row.of);
        auto const* const quality = row.quality.get();
        auto durability = DDS_DURABILITY_VOLATILE;
        dds_qget_durability(quality, &durability);
        EXPECT_EQ(durability, row.durability);
        auto history = DDS_HISTORY_KEEP_LAST;
        std::int32_t depth = 0;
        ASSERT_TRUE(dds_qget_history(quality, &history, &depth));
        EXPECT_EQ(history, row.history);
        if (history == DDS_HISTORY_KEEP_LAST) {
            EXPECT_EQ(depth, row.depth);
        }
        auto reliability = DDS_RELIABILITY_BEST_EFFORT;
        dds_duration_t longest_write = 0;
        ASSERT_TRUE(dds_qget_reliability(quality, &reliability, &longest_write));
        EXPECT_EQ(reliability, DDS_RELIABILITY_RELIABLE);
        EXPECT_EQ(std::chrono::nanoseconds(longest_write), row.longest_write);
        bool disposes = true;
        ASSERT_TRUE(dds_qget_writer_data_lifecycle(quality, &disposes));
        EXPECT_FALSE(disposes);
    }
}

// What a writer keeps for those who come later.
TEST(Quality_test, Of_a_field_keeps_the_newest_value) {
    dds_duration_t delay = -1;
    auto history = DDS_HISTORY_KEEP_ALL;
    std::int32_t depth = 0;
    std::int32_t most = 0;
    ASSERT_TRUE(
        dds_qget_durability_service(event_writer_quality(true).get(), &delay, &history, &depth, &most, &most, &most));
    EXPECT_EQ(delay, 0);
    EXPECT_EQ(history, DDS_HISTORY_KEEP_LAST);
    EXPECT_EQ(depth, 1);
}

}  // namespace
}  // namespace com_unit
