#include "services/user_data_names.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace services {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(User_data_names_test, Every_part_of_the_usual_layout_has_its_name) {
    EXPECT_THAT(user_data_names({0xc0, 0x01, 0x80, 0x02, 0x00, 0x80}),
                ElementsAre("car wake-up", "awake", "AC 1", "AC 16", "CAB 1", "CAB 23"));
}

TEST(User_data_names_test, Bits_without_a_meaning_have_their_number) {
    EXPECT_THAT(user_data_names({0x01, 0, 0, 0, 0, 0, 0x10}), ElementsAre("bit 0", "bit 52"));
}

TEST(User_data_names_test, Nothing_set_has_no_names) {
    EXPECT_THAT(user_data_names({}), IsEmpty());
    EXPECT_THAT(user_data_names({0, 0, 0}), IsEmpty());
}

TEST(User_data_names_test, The_layout_decides) {
    User_data_layout layout;
    layout.cwu_bit_position = 0;
    layout.ac_offset = 2;
    layout.ac_bytes = 1;
    layout.cab_offset = 3;
    layout.cab_bytes = 1;
    EXPECT_THAT(user_data_names({0x01, 0x02, 0x04, 0x08, 0x01}, layout),
                ElementsAre("car wake-up", "bit 9", "AC 3", "CAB 3", "bit 32"));
}

TEST(User_data_names_test, A_car_wake_up_bit_in_the_place_of_another_one_wins) {
    User_data_layout layout;
    layout.cwu_bit_position = 7;
    EXPECT_THAT(user_data_names({0x80}, layout), ElementsAre("car wake-up"));
}

TEST(Network_state_names_test, Bits_are_numbered_and_the_one_that_keeps_the_ecu_alive_is_named) {
    EXPECT_THAT(network_state_names({0x01, 0x80, 0x03}), ElementsAre("CAB 0", "CAB 15", "ECU alive", "CAB 17"));
}

TEST(Layout_test, Is_read_from_a_configuration) {
    json const section{{"CWUBitPosition", 5}, {"ACOffset", 2}, {"ACBytes", 1}, {"CABOffset", 4}, {"CABBytes", 2}};
    auto const layout = layout_in({{"ap_statemanager", {{"NmUserDataConfig", section}}}});
    EXPECT_EQ(layout.cwu_bit_position, 5U);
    EXPECT_EQ(layout.ac_offset, 2U);
    EXPECT_EQ(layout.ac_bytes, 1U);
    EXPECT_EQ(layout.cab_offset, 4U);
    EXPECT_EQ(layout.cab_bytes, 2U);
}

TEST(Layout_test, What_a_configuration_does_not_say_is_the_default) {
    for (auto const* text : {"{}", "[]", "null", R"({"ap_statemanager":1})", R"({"ap_statemanager":{}})",
                             R"({"ap_statemanager":{"NmUserDataConfig":[]}})",
                             R"({"ap_statemanager":{"NmUserDataConfig":{"ACOffset":"1","CABOffset":-3}}})"}) {
        auto const layout = layout_in(json::parse(text));
        EXPECT_EQ(layout.cwu_bit_position, 6U) << text;
        EXPECT_EQ(layout.ac_offset, 1U) << text;
        EXPECT_EQ(layout.ac_bytes, 2U) << text;
        EXPECT_EQ(layout.cab_offset, 3U) << text;
        EXPECT_EQ(layout.cab_bytes, 3U) << text;
    }
}

TEST(Enumerate_test, Puts_commas_between_and_names_nothing) {
    EXPECT_EQ(enumerate({"a", "b"}), "a, b");
    EXPECT_EQ(enumerate({}), "none");
}

}  // namespace
}  // namespace services
