// The command reader on devices that send any bytes: it throws nothing, stays in its bounds, reads a record as the
// kernel's own structure does, and its queue keeps the rules that the states rely on.
#include "require.h"
#include "scripted_devices.h"
#include "statemanager/virtio/virtio_interface.h"

#include <cstring>

#include <linux/input.h>

namespace {

using fuzz::require;
using ximo::ap::statemanager::virtio::decode_input_record;
using ximo::ap::statemanager::virtio::Input_record;
using ximo::ap::statemanager::virtio::Input_record_bytes;
using ximo::ap::statemanager::virtio::k_input_record_size;
using ximo::ap::statemanager::virtio::toString;
using ximo::ap::statemanager::virtio::Virtio_command;
using ximo::ap::statemanager::virtio::Virtio_interface;

/// On the machine that fuzzes, the kernel's structure has the very layout that the decoder takes apart by hand.
void compare_with_kernel(std::uint8_t const* data, std::size_t size) {
    static_assert(sizeof(input_event) == k_input_record_size);
    for (; size >= k_input_record_size; data += k_input_record_size, size -= k_input_record_size) {
        Input_record_bytes bytes{};
        input_event expected{};
        std::memcpy(bytes.data(), data, k_input_record_size);
        std::memcpy(&expected, data, k_input_record_size);
        Input_record const record = decode_input_record(bytes);
        require(record.type == expected.type && record.code == expected.code && record.value == expected.value);
    }
}

/// Empties the queue: every command is a known one, none is like the one before it, and "Shutdown" is the first.
void take_all(Virtio_interface& reader) {
    auto before = Virtio_command::none;
    for (;;) {
        Virtio_command const command = reader.get_command(0);
        if (command == Virtio_command::none) {
            return;
        }
        require(!toString(command).empty());
        require(command != before);
        require(command != Virtio_command::shutdown || before == Virtio_command::none);
        before = command;
        reader.command_consumed();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    compare_with_kernel(data, size);
    fuzz::Scripted_devices devices(data, size);
    Virtio_interface reader(devices);
    require(reader.init("/dev/input"));
    while (!devices.ended()) {
        reader.check_for_commands(0);
    }
    take_all(reader);
    return 0;
}
