#include "bench/network/bits.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace bench::network {
namespace {

TEST(Bits_test, Any_sees_every_bit) {
    EXPECT_FALSE(any({}));
    EXPECT_FALSE(any({0, 0}));
    EXPECT_TRUE(any({0, 0x80}));
    EXPECT_TRUE(any({1, 0}));
}

TEST(Bits_test, Bits_behind_a_length_are_seen_from_that_byte_on) {
    EXPECT_FALSE(any_behind({1, 1, 0}, 2));
    EXPECT_TRUE(any_behind({0, 0, 1}, 2));
    EXPECT_FALSE(any_behind({1, 1}, 2));
    EXPECT_FALSE(any_behind({1}, 2));
}

TEST(Bits_test, Setting_adds_and_keeps_the_length) {
    Bits sut{0x01, 0x10};
    set_bits(sut, {0x02, 0x10, 0xff});
    EXPECT_THAT(sut, testing::ElementsAre(0x03, 0x10));
    set_bits(sut, {0x80});
    EXPECT_THAT(sut, testing::ElementsAre(0x83, 0x10));
}

TEST(Bits_test, Clearing_takes_away_and_keeps_the_length) {
    Bits sut{0x07, 0xff};
    clear_bits(sut, {0x05, 0x0f, 0xff});
    EXPECT_THAT(sut, testing::ElementsAre(0x02, 0xf0));
    clear_bits(sut, {});
    EXPECT_THAT(sut, testing::ElementsAre(0x02, 0xf0));
}

}  // namespace
}  // namespace bench::network
