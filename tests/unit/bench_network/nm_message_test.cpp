#include "bench/network/nm_message.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace bench::network {
namespace {

using testing::ElementsAre;

TEST(Nm_message_test, Is_taken_apart_by_the_length_of_the_requests) {
    auto const message = decode({0x12, 0x50, 1, 2, 0x80, 0x40, 3}, 2);
    ASSERT_TRUE(message);
    EXPECT_EQ(message->node, 0x12);
    EXPECT_TRUE(message->has(Control_bit::active_wakeup));
    EXPECT_FALSE(message->has(Control_bit::repeat_message));
    EXPECT_THAT(message->requests, ElementsAre(1, 2));
    EXPECT_THAT(message->user_data, ElementsAre(0x80, 0x40, 3));
}

TEST(Nm_message_test, Without_the_partial_network_bit_has_user_data_only) {
    auto const message = decode({0x12, 0x00, 1, 2, 3}, 2);
    ASSERT_TRUE(message);
    EXPECT_THAT(message->requests, testing::IsEmpty());
    EXPECT_THAT(message->user_data, ElementsAre(1, 2, 3));
}

TEST(Nm_message_test, Too_short_for_what_it_announces_is_refused) {
    EXPECT_FALSE(decode({}, 2));
    EXPECT_FALSE(decode({0x12}, 2));
    EXPECT_FALSE(decode({0x12, 0x40}, 2));
    EXPECT_FALSE(decode({0x12, 0x40, 1}, 2));
}

TEST(Nm_message_test, Longer_than_any_message_is_refused) {
    Bits bytes(2 + 2 + k_most_user_data);
    bytes[1] = Control_bit::partial_network;
    EXPECT_TRUE(decode(bytes, 2));
    bytes.push_back(0);
    EXPECT_FALSE(decode(bytes, 2));
    bytes[1] = 0;
    bytes.resize(2 + k_most_user_data);
    EXPECT_TRUE(decode(bytes, 2));
    bytes.push_back(0);
    EXPECT_FALSE(decode(bytes, 2));
}

TEST(Nm_message_test, Reserved_bits_are_kept_and_mean_nothing) {
    auto const message = decode({0x01, 0xa6, 9}, 4);
    ASSERT_TRUE(message);
    EXPECT_THAT(encode(*message), ElementsAre(0x01, 0xa6, 9));
}

}  // namespace
}  // namespace bench::network
