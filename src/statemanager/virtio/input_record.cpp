#include "statemanager/virtio/input_record.h"

#include <linux/input-event-codes.h>

namespace ximo::ap::statemanager::virtio {

namespace {

constexpr std::size_t k_type_offset = 16;
constexpr std::size_t k_code_offset = 18;
constexpr std::size_t k_value_offset = 20;
constexpr std::int32_t k_press = 1;

std::uint32_t little_endian(Input_record_bytes const& bytes, std::size_t offset, std::size_t width) {
    std::uint32_t number = 0;
    for (std::size_t i = width; i > 0; --i) {
        number = number << 8U | bytes.at(offset + i - 1);
    }
    return number;
}

bool is_power_press(Input_record const& record) {
    return (record.type == EV_KEY || record.type == EV_PWR) && record.code == KEY_POWER && record.value == k_press;
}

std::optional<Virtio_command> command_of_key(std::uint16_t code) {
    switch (code) {
        case KEY_R:
            return Virtio_command::run;
        case KEY_N:
            return Virtio_command::nm_controlled;
        case KEY_S:
            return Virtio_command::nm_controlled_prepare_sd;
        case KEY_P:
            return Virtio_command::prepare_sd;
        default:
            return std::nullopt;
    }
}

}  // namespace

Input_record decode_input_record(Input_record_bytes const& bytes) {
    return {static_cast<std::uint16_t>(little_endian(bytes, k_type_offset, 2)),
            static_cast<std::uint16_t>(little_endian(bytes, k_code_offset, 2)),
            static_cast<std::int32_t>(little_endian(bytes, k_value_offset, 4))};
}

std::optional<Virtio_command> command_of(Input_record const& record) {
    if (is_power_press(record)) {
        return Virtio_command::shutdown;
    }
    if (record.type == EV_KEY && record.value == k_press) {
        return command_of_key(record.code);
    }
    return std::nullopt;
}

}  // namespace ximo::ap::statemanager::virtio
