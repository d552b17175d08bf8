#ifndef STATEMANAGER_VIRTIO_INPUT_RECORD_H
#define STATEMANAGER_VIRTIO_INPUT_RECORD_H

#include "statemanager/virtio_command.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace ximo::ap::statemanager::virtio {

// One input event as a 64-bit Linux system delivers it: 24 bytes, little-endian.
//
//   offset  width  field
//        0      8  time, seconds          (ignored)
//        8      8  time, microseconds     (ignored)
//       16      2  type, unsigned         1 key, 22 power; 0 ends a group of events
//       18      2  code, unsigned         which key
//       20      4  value, signed          1 press, 0 release, 2 repeat
//
// It is taken apart by this table and not by the input_event of the machine that builds the daemon.

constexpr std::size_t k_input_record_size = 24;

using Input_record_bytes = std::array<std::uint8_t, k_input_record_size>;

struct Input_record {
    std::uint16_t type;
    std::uint16_t code;
    std::int32_t value;
};

Input_record decode_input_record(Input_record_bytes const& bytes);

/// The command that an event stands for; none for a release, a repeat, another key or another kind of event.
std::optional<Virtio_command> command_of(Input_record const& record);

}  // namespace ximo::ap::statemanager::virtio

#endif
