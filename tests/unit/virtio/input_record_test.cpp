#include "statemanager/virtio/input_record.h"

#include <gmock/gmock.h>

namespace ximo::ap::statemanager::virtio {
namespace {

using testing::Eq;
using testing::Optional;

using Codes = std::initializer_list<std::uint16_t>;

constexpr std::uint16_t k_key = 1;
constexpr std::uint16_t k_power = 22;

TEST(Input_record, Is_taken_apart_at_its_offsets_least_significant_byte_first) {
    Input_record_bytes bytes{};
    bytes.fill(0xEE);
    bytes[16] = 0x01;
    bytes[17] = 0x02;
    bytes[18] = 0x03;
    bytes[19] = 0x04;
    bytes[20] = 0x05;
    bytes[21] = 0x06;
    bytes[22] = 0x07;
    bytes[23] = 0x08;

    Input_record const record = decode_input_record(bytes);

    EXPECT_EQ(record.type, 0x0201);
    EXPECT_EQ(record.code, 0x0403);
    EXPECT_EQ(record.value, 0x08070605);
}

TEST(Input_record, Type_and_code_have_no_sign_and_the_value_has_one) {
    Input_record_bytes bytes{};
    bytes.fill(0xFF);

    Input_record const record = decode_input_record(bytes);

    EXPECT_EQ(record.type, 65535);
    EXPECT_EQ(record.code, 65535);
    EXPECT_EQ(record.value, -1);
}

TEST(Input_record, The_time_stamp_does_not_matter) {
    Input_record_bytes bytes{};
    for (std::size_t i = 0; i < 16; ++i) {
        bytes.at(i) = 0xFF;
    }

    Input_record const record = decode_input_record(bytes);

    EXPECT_EQ(record.type, 0);
    EXPECT_EQ(record.code, 0);
    EXPECT_EQ(record.value, 0);
}

TEST(Input_record, Each_key_press_is_its_command) {
    EXPECT_THAT(command_of({k_key, 19, 1}), Optional(Virtio_command::run));
    EXPECT_THAT(command_of({k_key, 49, 1}), Optional(Virtio_command::nm_controlled));
    EXPECT_THAT(command_of({k_key, 31, 1}), Optional(Virtio_command::nm_controlled_prepare_sd));
    EXPECT_THAT(command_of({k_key, 25, 1}), Optional(Virtio_command::prepare_sd));
    EXPECT_THAT(command_of({k_key, 116, 1}), Optional(Virtio_command::shutdown));
}

TEST(Input_record, Only_the_power_key_may_come_as_a_power_event) {
    EXPECT_THAT(command_of({k_power, 116, 1}), Optional(Virtio_command::shutdown));
    for (std::uint16_t const code : Codes{19, 25, 31, 49}) {
        EXPECT_THAT(command_of({k_power, code, 1}), Eq(std::nullopt)) << code;
    }
}

TEST(Input_record, A_release_a_repeat_and_any_other_value_are_no_command) {
    for (std::uint16_t const code : Codes{19, 25, 31, 49, 116}) {
        for (std::int32_t const value : {0, 2, -1, 257, 65537}) {
            EXPECT_THAT(command_of({k_key, code, value}), Eq(std::nullopt)) << code << ' ' << value;
            EXPECT_THAT(command_of({k_power, code, value}), Eq(std::nullopt)) << code << ' ' << value;
        }
    }
}

TEST(Input_record, Every_other_code_is_no_command) {
    for (std::uint32_t code = 0; code <= 65535; ++code) {
        if (code == 19 || code == 25 || code == 31 || code == 49 || code == 116) {
            continue;
        }
        ASSERT_THAT(command_of({k_key, static_cast<std::uint16_t>(code), 1}), Eq(std::nullopt)) << code;
        ASSERT_THAT(command_of({k_power, static_cast<std::uint16_t>(code), 1}), Eq(std::nullopt)) << code;
    }
}

TEST(Input_record, Every_other_type_is_no_command) {
    for (std::uint32_t type = 0; type <= 65535; ++type) {
        if (type == k_key || type == k_power) {
            continue;
        }
        for (std::uint16_t const code : Codes{19, 25, 31, 49, 116}) {
            ASSERT_THAT(command_of({static_cast<std::uint16_t>(type), code, 1}), Eq(std::nullopt)) << type;
        }
    }
}

}  // namespace
}  // namespace ximo::ap::statemanager::virtio
