// Layouts other than the default one, sensible and not.

#include "aggregator_fixture.h"

#include <limits>

namespace ximo::ap::statemanager::nm {
namespace {

constexpr auto k_most = std::numeric_limits<std::uint32_t>::max();

Nm_data_aggregator set_up(Nm_user_data_config const& layout) {
    Nm_data_aggregator aggregator(layout);
    aggregator.init(4);
    return aggregator;
}

TEST(Layout, Puts_each_area_where_it_is_told) {
    Nm_user_data_config layout;
    layout.user_data_bytes = 8;
    layout.cwu_bit_position = 13;
    layout.ac_offset = 2;
    layout.ac_bytes = 1;
    layout.cab_offset = 4;
    layout.cab_bytes = 4;
    auto sut = set_up(layout);

    sut.request_cwu("app");
    sut.set_ac_bit("app", 8);
    sut.set_ac_bit("another", 9);
    sut.request_cab_bits("app", {0x0A, 0x0B, 0x0C, 0x0D});

    EXPECT_THAT(sut.get_user_data(), ElementsAre(0x80, 0x20, 0x80, 0, 0x0A, 0x0B, 0x0C, 0x0D));
}

TEST(Layout, Assigns_the_first_byte_whatever_lies_there) {
    Nm_user_data_config layout;
    layout.ac_offset = 0;
    auto sut = set_up(layout);

    sut.set_ac_bit("app", 1);
    EXPECT_THAT(sut.get_user_data(), ElementsAre(0x01, 0, 0, 0, 0, 0));

    sut.init(4);
    EXPECT_THAT(sut.get_user_data(), ElementsAre(0x80, 0, 0, 0, 0, 0));
}

TEST(Layout, Leaves_areas_of_more_than_four_bytes_alone) {
    Nm_user_data_config layout;
    layout.user_data_bytes = 20;
    layout.ac_bytes = 5;
    layout.cab_offset = 8;
    layout.cab_bytes = 5;
    auto sut = set_up(layout);
    Log_capture log;

    sut.set_ac_bit("app", 1);
    sut.request_cab_bits("app", {0x01});

    auto const too_few = logged(LogLevel::kError, "Invalid bitvector size, below configured size: ", 5U);
    EXPECT_THAT(log.messages(), ElementsAre(applying(4, 1), too_few, applying(4, 8), too_few));
    Bit_vector untouched(20);
    untouched.front() = 0x80;
    EXPECT_EQ(sut.get_user_data(), untouched);
}

TEST(Layout, Leaves_out_an_area_that_does_not_fit) {
    auto sut = set_up({});
    Log_capture log;
    auto const no_room = [](unsigned count, unsigned offset) {
        return logged(LogLevel::kError, "NM user data has no room for ", count, " bytes at offset ", offset);
    };

    sut.apply_user_data_bits({1, 2, 3, 4}, 3, 4);
    sut.apply_user_data_bits({1, 2, 3, 4}, 6, 0);
    sut.apply_user_data_bits({1, 2, 3, 4}, 7, 0);
    sut.apply_user_data_bits({1, 2, 3, 4}, k_most, 2);

    EXPECT_THAT(log.messages(LogLevel::kError), ElementsAre(no_room(4, 3), no_room(0, 7), no_room(2, k_most)));
    EXPECT_THAT(sut.get_user_data(), ElementsAre(0x80, 0, 0, 0, 0, 0));
}

TEST(Layout, Leaves_out_a_wake_up_bit_that_does_not_fit) {
    Nm_user_data_config layout;
    layout.cwu_bit_position = 48;
    auto sut = set_up(layout);
    Log_capture log;
    auto const no_bit = logged(LogLevel::kError, "NM user data has no bit at the CWU bit position ", 48U);

    sut.request_cwu("app");
    EXPECT_THAT(log.messages(), ElementsAre(no_bit));
    EXPECT_TRUE(sut.is_com_alive());

    sut.release_cwu("app");
    EXPECT_THAT(log.messages(), ElementsAre(no_bit, no_bit, releasing_ac_bit("app"), applying(4, 1)));
    EXPECT_FALSE(sut.is_com_alive());
    EXPECT_THAT(sut.get_user_data(), ElementsAre(0x80, 0, 0, 0, 0, 0));
}

TEST(Layout, Takes_the_last_bit_of_the_user_data_for_the_wake_up) {
    Nm_user_data_config layout;
    layout.cwu_bit_position = 47;
    auto sut = set_up(layout);

    sut.request_cwu("app");

    EXPECT_THAT(sut.get_user_data(), ElementsAre(0x80, 0, 0, 0, 0, 0x80));
}

TEST(Layout, May_have_no_user_data_at_all) {
    Nm_user_data_config layout;
    layout.user_data_bytes = 0;
    auto sut = set_up(layout);

    sut.request_cwu("app");
    sut.set_ac_bit("app", 1);
    sut.request_cab_bits("app", {0xFF});

    EXPECT_THAT(sut.get_user_data(), IsEmpty());
    EXPECT_TRUE(sut.is_com_alive());
}

}  // namespace
}  // namespace ximo::ap::statemanager::nm
