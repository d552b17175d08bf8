#include "aggregator_fixture.h"

namespace ximo::ap::statemanager::nm {
namespace {

TEST_F(Aggregator, Starts_with_the_fixed_first_byte_and_nothing_requested) {
    EXPECT_THAT(sut.get_user_data(), ElementsAre(0x80, 0, 0, 0, 0, 0));
    EXPECT_THAT(sut.get_application_bits(), ElementsAre(0, 0, 0, 0));
    EXPECT_THAT(sut.aggregate_application_bits(), ElementsAre(0, 0, 0, 0));
    EXPECT_THAT(sut.aggregate_ac_bits(), ElementsAre(0, 0, 0, 0));
    EXPECT_FALSE(sut.is_com_alive());
}

TEST_F(Aggregator, Keeps_the_user_data_behind_the_first_byte_when_set_up_again) {
    sut.request_cab_bits("app", {0x01});
    sut.request_cwu("app");

    sut.init(2);

    EXPECT_THAT(sut.get_user_data(), ElementsAre(0x80, 0, 0, 0x01, 0, 0));
    EXPECT_THAT(sut.get_application_bits(), ElementsAre(0x01, 0));
    EXPECT_THAT(sut.aggregate_application_bits(), ElementsAre(0x01, 0));
}

TEST_F(Aggregator, Combines_the_CAB_bits_of_all_applications_in_the_CAB_area) {
    sut.request_cab_bits("one", {0x01, 0x80});
    sut.request_cab_bits("two", {0x10, 0x00, 0x03});

    EXPECT_THAT(sut.get_application_bits(), ElementsAre(0x11, 0x80, 0x03, 0));
    EXPECT_THAT(sut.get_user_data(), ElementsAre(0x80, 0, 0, 0x11, 0x80, 0x03));
    EXPECT_THAT(log.messages(), ElementsAre(applying(4, 3), applying(4, 3)));
    EXPECT_TRUE(sut.is_com_alive());
}

TEST_F(Aggregator, Keeps_the_CAB_bits_that_another_application_still_holds) {
    sut.request_cab_bits("one", {0x01, 0x80});
    sut.request_cab_bits("two", {0x01, 0x00, 0x03});

    sut.release_cab_bits("one", {0x01, 0x80});

    EXPECT_THAT(sut.get_application_bits(), ElementsAre(0x01, 0, 0x03, 0));
    EXPECT_THAT(sut.get_user_data(), ElementsAre(0x80, 0, 0, 0x01, 0, 0x03));
}

TEST_F(Aggregator, Takes_four_bytes_of_CAB_bits_and_no_more) {
    sut.request_cab_bits("app", {0, 0, 0, 0x08, 0xFF, 0xFF, 0xFF});

    EXPECT_THAT(sut.get_application_bits(), ElementsAre(0, 0, 0, 0x08));
    EXPECT_THAT(sut.get_user_data(), ElementsAre(0x80, 0, 0, 0, 0, 0));
    EXPECT_TRUE(sut.is_com_alive());
}

TEST_F(Aggregator, Takes_an_empty_request_and_remembers_who_made_it) {
    sut.request_cab_bits("app", {});

    EXPECT_FALSE(sut.is_com_alive());
    EXPECT_THAT(log.messages(), ElementsAre(applying(4, 3)));
}

TEST_F(Aggregator, Rewrites_the_CAB_area_when_bits_are_released_that_were_never_requested) {
    sut.request_cab_bits("app", {0x01});
    log.clear();

    sut.release_cab_bits("app", {0xFE, 0xFF, 0xFF});

    EXPECT_THAT(sut.get_user_data(), ElementsAre(0x80, 0, 0, 0x01, 0, 0));
    EXPECT_THAT(log.messages(), ElementsAre(applying(4, 3)));
}

TEST_F(Aggregator, Gives_the_AC_bit_back_with_the_last_CAB_bit) {
    sut.set_ac_bit("app", 9);
    sut.request_cab_bits("app", {0x03});

    sut.release_cab_bits("app", {0x01});
    EXPECT_THAT(sut.get_user_data(), ElementsAre(0x80, 0, 0x01, 0x02, 0, 0));

    log.clear();
    sut.release_cab_bits("app", {0x02});
    EXPECT_THAT(sut.get_user_data(), ElementsAre(0x80, 0, 0, 0, 0, 0));
    EXPECT_THAT(log.messages(), ElementsAre(applying(4, 3), releasing_ac_bit("app"), applying(4, 1)));
    EXPECT_FALSE(sut.is_com_alive());
}

TEST_F(Aggregator, Keeps_the_AC_bit_with_the_last_CAB_bit_while_the_CWU_is_held) {
    sut.set_ac_bit("app", 9);
    sut.request_cwu("app");
    sut.request_cab_bits("app", {0x01});

    sut.release_cab_bits("app", {0x01});

    EXPECT_THAT(sut.get_user_data(), ElementsAre(0xC0, 0, 0x01, 0, 0, 0));
}

TEST_F(Aggregator, Combines_the_AC_bits_of_all_applications_in_the_AC_area) {
    sut.set_ac_bit("one", 1);
    sut.set_ac_bit("two", 8);
    sut.set_ac_bit("three", 9);
    sut.set_ac_bit("four", 16);

    EXPECT_THAT(sut.aggregate_ac_bits(), ElementsAre(0x81, 0x81, 0, 0));
    EXPECT_THAT(sut.get_user_data(), ElementsAre(0x80, 0x81, 0x81, 0, 0, 0));
    EXPECT_THAT(log.messages(), testing::Each(applying(4, 1)));
    EXPECT_THAT(log.messages(), testing::SizeIs(4));
}

TEST_F(Aggregator, Gives_an_application_another_AC_bit_for_the_one_before) {
    sut.set_ac_bit("app", 3);

    sut.set_ac_bit("app", 10);

    EXPECT_THAT(sut.get_user_data(), ElementsAre(0x80, 0, 0x02, 0, 0, 0));
}

TEST_F(Aggregator, Takes_the_AC_bit_away_for_numbers_that_are_no_bit) {
    for (std::uint8_t const number : {std::uint8_t{0}, std::uint8_t{17}}) {
        sut.set_ac_bit("app", 5);
        ASSERT_THAT(sut.get_user_data(), ElementsAre(0x80, 0x10, 0, 0, 0, 0));

        sut.set_ac_bit("app", number);

        EXPECT_THAT(sut.get_user_data(), ElementsAre(0x80, 0, 0, 0, 0, 0)) << int{number};
    }
}

TEST_F(Aggregator, Releases_only_the_AC_bit_of_the_application_that_is_named) {
    sut.set_ac_bit("one", 1);
    sut.set_ac_bit("two", 2);
    log.clear();

    sut.release_ac_bit("one");

    EXPECT_THAT(sut.get_user_data(), ElementsAre(0x80, 0x02, 0, 0, 0, 0));
    EXPECT_THAT(log.messages(), ElementsAre(releasing_ac_bit("one"), applying(4, 1)));
}

TEST_F(Aggregator, Is_not_kept_alive_by_AC_bits) {
    sut.set_ac_bit("app", 1);

    EXPECT_FALSE(sut.is_com_alive());
}

TEST_F(Aggregator, Copies_the_first_bytes_to_the_given_place) {
    sut.apply_user_data_bits({0x11, 0x22, 0x33}, 2, 2);

    EXPECT_THAT(sut.get_user_data(), ElementsAre(0x80, 0, 0x11, 0x22, 0, 0));
    EXPECT_THAT(log.messages(), ElementsAre(applying(3, 2)));
}

TEST_F(Aggregator, Changes_nothing_when_there_are_fewer_bytes_than_to_be_copied) {
    sut.apply_user_data_bits({0x11, 0x22}, 1, 3);

    EXPECT_THAT(sut.get_user_data(), ElementsAre(0x80, 0, 0, 0, 0, 0));
    EXPECT_THAT(
        log.messages(),
        ElementsAre(applying(2, 1), logged(LogLevel::kError, "Invalid bitvector size, below configured size: ", 3U)));
}

}  // namespace
}  // namespace ximo::ap::statemanager::nm
