#include "statemanager/nm/application_stats.h"

#include <string>

#include <gmock/gmock.h>

namespace ximo::ap::statemanager::nm {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::SizeIs;

TEST(Application_stats_test, A_new_application_holds_nothing) {
    Application_stats const sut;

    EXPECT_FALSE(sut.is_cwu_active());
    EXPECT_FALSE(sut.is_app_active());
    EXPECT_EQ(sut.get_application_bits(), Bit_vector(7, 0));
    EXPECT_EQ(sut.get_ac_bits(), Bit_vector(2, 0));
}

TEST(Application_stats_test, CAB_bits_add_up_and_are_taken_away_one_by_one) {
    Application_stats sut;

    sut.set_app_bits({0x01, 0x80});
    sut.set_app_bits({0x10, 0x80, 0, 0, 0, 0, 0x02});
    EXPECT_THAT(sut.get_application_bits(), ElementsAre(0x11, 0x80, 0, 0, 0, 0, 0x02));

    sut.release_app_bits({0x01, 0x40});
    EXPECT_THAT(sut.get_application_bits(), ElementsAre(0x10, 0x80, 0, 0, 0, 0, 0x02));
}

TEST(Application_stats_test, Bytes_beyond_the_seventh_are_ignored) {
    Application_stats sut;

    sut.set_app_bits({0, 0, 0, 0, 0, 0, 0x01, 0xFF});

    EXPECT_THAT(sut.get_application_bits(), ElementsAre(0, 0, 0, 0, 0, 0, 0x01));
}

TEST(Application_stats_test, Releasing_bits_that_are_not_held_changes_nothing) {
    Application_stats sut;
    sut.set_app_bits({0x01});

    sut.release_app_bits({0xFE, 0xFF});
    sut.release_app_bits({});

    EXPECT_THAT(sut.get_application_bits(), ElementsAre(0x01, 0, 0, 0, 0, 0, 0));
}

struct Ac_case {
    std::uint8_t number;
    std::uint8_t first_byte;
    std::uint8_t second_byte;
};

std::string name_of(testing::TestParamInfo<Ac_case> const& test) {
    return "n_" + std::to_string(test.param.number);
}

class Ac_bit : public testing::TestWithParam<Ac_case> {};

TEST_P(Ac_bit, Number_n_is_bit_n_less_one_and_replaces_the_one_before) {
    Application_stats sut;
    sut.set_ac_bit(4);

    sut.set_ac_bit(GetParam().number);

    EXPECT_THAT(sut.get_ac_bits(), ElementsAre(GetParam().first_byte, GetParam().second_byte));
}

INSTANTIATE_TEST_SUITE_P(Numbers, Ac_bit,
                         testing::Values(Ac_case{1, 0x01, 0}, Ac_case{2, 0x02, 0}, Ac_case{4, 0x08, 0},
                                         Ac_case{8, 0x80, 0}, Ac_case{9, 0, 0x01}, Ac_case{15, 0, 0x40},
                                         Ac_case{16, 0, 0x80}),
                         name_of);

INSTANTIATE_TEST_SUITE_P(Numbers_that_only_clear, Ac_bit,
                         testing::Values(Ac_case{0, 0, 0}, Ac_case{17, 0, 0}, Ac_case{255, 0, 0}), name_of);

TEST(Application_stats_test, Releasing_the_AC_bits_clears_all_of_them) {
    Application_stats sut;
    sut.set_ac_bit(16);

    sut.release_ac_bits();

    EXPECT_THAT(sut.get_ac_bits(), testing::AllOf(SizeIs(2), Each(0)));
}

TEST(Application_stats_test, An_application_is_active_with_the_CWU_or_with_a_CAB_bit_in_any_byte) {
    Application_stats with_cwu;
    with_cwu.set_cwu_flag(true);
    Application_stats with_bit;
    with_bit.set_app_bits({0, 0, 0, 0, 0, 0, 0x80});

    EXPECT_TRUE(with_cwu.is_cwu_active());
    EXPECT_TRUE(with_cwu.is_app_active());
    EXPECT_FALSE(with_bit.is_cwu_active());
    EXPECT_TRUE(with_bit.is_app_active());

    with_cwu.set_cwu_flag(false);
    with_bit.release_app_bits({0, 0, 0, 0, 0, 0, 0x80});
    EXPECT_FALSE(with_cwu.is_app_active());
    EXPECT_FALSE(with_bit.is_app_active());
}

TEST(Application_stats_test, An_AC_bit_alone_does_not_make_an_application_active) {
    Application_stats sut;

    sut.set_ac_bit(3);

    EXPECT_FALSE(sut.is_app_active());
}

}  // namespace
}  // namespace ximo::ap::statemanager::nm
