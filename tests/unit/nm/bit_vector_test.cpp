#include "statemanager/nm/bit_vector.h"

#include <gmock/gmock.h>

namespace ximo::ap::statemanager {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Bit_vector_test, Or_changes_the_bytes_that_both_have_and_keeps_the_length) {
    Bit_vector longer{0x01, 0x00, 0x55};
    longer |= Bit_vector{0x80, 0x0F};
    EXPECT_THAT(longer, ElementsAre(0x81, 0x0F, 0x55));

    Bit_vector shorter{0x01};
    shorter |= Bit_vector{0x02, 0xFF};
    EXPECT_THAT(shorter, ElementsAre(0x03));
}

TEST(Bit_vector_test, And_changes_the_bytes_that_both_have_and_keeps_the_length) {
    Bit_vector longer{0xF1, 0xFF, 0x55};
    longer &= Bit_vector{0x81, 0x0F};
    EXPECT_THAT(longer, ElementsAre(0x81, 0x0F, 0x55));

    Bit_vector shorter{0xF3};
    shorter &= Bit_vector{0x02, 0xFF};
    EXPECT_THAT(shorter, ElementsAre(0x02));
}

TEST(Bit_vector_test, The_changing_operators_give_the_changed_vector_itself) {
    Bit_vector sut{0x0F};

    EXPECT_EQ(&(sut |= Bit_vector{0x10}), &sut);
    EXPECT_EQ(&(sut &= Bit_vector{0x11}), &sut);
    EXPECT_THAT(sut, ElementsAre(0x11));
}

TEST(Bit_vector_test, The_new_vector_has_the_shorter_length) {
    Bit_vector const three{0xF0, 0x3C, 0xFF};
    Bit_vector const two{0x81, 0x0F};

    EXPECT_THAT(three & two, ElementsAre(0x80, 0x0C));
    EXPECT_THAT(two & three, ElementsAre(0x80, 0x0C));
    EXPECT_THAT(three ^ two, ElementsAre(0x71, 0x33));
    EXPECT_THAT(two ^ three, ElementsAre(0x71, 0x33));
}

TEST(Bit_vector_test, Inverting_gives_each_byte_its_complement) {
    EXPECT_THAT((~Bit_vector{0x00, 0xFF, 0xA5}), ElementsAre(0xFF, 0x00, 0x5A));
}

TEST(Bit_vector_test, An_empty_operand_gives_an_empty_result_or_changes_nothing) {
    Bit_vector const none;
    Bit_vector const some{0x42};
    Bit_vector changed = some;

    changed |= none;
    changed &= none;

    EXPECT_EQ(changed, some);
    EXPECT_THAT(some & none, IsEmpty());
    EXPECT_THAT(none & some, IsEmpty());
    EXPECT_THAT(some ^ none, IsEmpty());
    EXPECT_THAT(none ^ some, IsEmpty());
    EXPECT_THAT(~none, IsEmpty());
    Bit_vector empty;
    EXPECT_THAT(empty |= some, IsEmpty());
    EXPECT_THAT(empty &= some, IsEmpty());
}

TEST(Bit_vector_test, Has_bits_looks_at_every_byte) {
    EXPECT_FALSE(has_bits({}));
    EXPECT_FALSE(has_bits({0, 0, 0}));
    EXPECT_TRUE(has_bits({0x80, 0, 0}));
    EXPECT_TRUE(has_bits({0, 0, 0x01}));
}

TEST(Bit_vector_test, The_text_form_has_two_lower_case_digits_and_a_blank_for_each_byte) {
    EXPECT_EQ(bitvector2str({}), "");
    EXPECT_EQ(bitvector2str({0x00, 0x00, 0x01, 0x00}), "00 00 01 00 ");
    EXPECT_EQ(bitvector2str({0xAB, 0x0F, 0xF0, 0xFF}), "ab 0f f0 ff ");
}

}  // namespace
}  // namespace ximo::ap::statemanager
