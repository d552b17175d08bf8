#include "statemanager/virtio/input_record.h"

#include <cstdint>
#include <map>
#include <optional>

#include <gmock/gmock.h>

namespace ximo::ap::statemanager::virtio {
namespace {

constexpr unsigned k_key = 1;
constexpr unsigned k_power = 22;

// What stands before them is the time stamp.
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

std::map<unsigned, Virtio_command> const k_commands{{19, Virtio_command::run},
                                                    {49, Virtio_command::nm_controlled},
                                                    {31, Virtio_command::nm_controlled_prepare_sd},
                                                    {25, Virtio_command::prepare_sd},
                                                    {116, Virtio_command::shutdown}};

std::optional<Virtio_command> expected(unsigned type, unsigned code, std::int32_t value) {
    bool const is_press = value == 1 && (type == k_key || (type == k_power && code == 116));
    return is_press && k_commands.count(code) != 0 ? std::optional(k_commands.at(code)) : std::nullopt;
}

void expect_command(unsigned type, unsigned code, std::int32_t value) {
    ASSERT_EQ(command_of({static_cast<std::uint16_t>(type), static_cast<std::uint16_t>(code), value}),
              expected(type, code, value))
        << type << ' ' << code << ' ' << value;
}

TEST(Input_record, Is_a_command_when_a_known_key_is_pressed_or_power_comes_as_a_power_event_and_else_never) {
    for (auto const value : {1, 0, 2, -1, 257, 65537}) {
        for (unsigned number = 0; number <= 65535; ++number) {
            expect_command(k_key, number, value);
            expect_command(k_power, number, value);
        }
        for (auto const& [code, command] : k_commands) {
            for (unsigned type = 0; type <= 65535; ++type) {
                expect_command(type, code, value);
            }
        }
    }
}

}  // namespace
}  // namespace ximo::ap::statemanager::virtio
