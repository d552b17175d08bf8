#ifndef STATEMANAGER_VIRTIO_VIRTIO_INTERFACE_H
#define STATEMANAGER_VIRTIO_VIRTIO_INTERFACE_H

#include "statemanager/virtio/input_devices.h"
#include "statemanager/virtio/linux_input_system.h"
#include "statemanager/virtio_interface_abstract.h"

#include <deque>
#include <string>

namespace ximo::ap::statemanager::virtio {

/// The hypervisor's commands, read from virtual input devices.
///
/// A key press is a command. `init` opens the devices; `get_command` waits for presses, turns those that it knows into
/// commands, queues them, oldest first, and tells the oldest; `command_consumed` takes it away. A command equal to the
/// one accepted last is dropped, so that a repeated key changes nothing; the power key overtakes everything that waits.
/// No operation throws; failures are logged. All calls come from one thread.
class Virtio_interface final : public Virtio_interface_abstract {
 public:
    /// `system` must outlive this object.
    explicit Virtio_interface(Input_system& system = linux_input_system()) : devices_(system) {}

    /// True when each device found could be used and there is at least one. After a failure it may be called again
    /// and starts anew; after a success it does nothing and returns false.
    bool init(std::string device_directory) override;

    /// Doesn't wait when no device is (or is left) registered.
    Virtio_command get_command(unsigned int timeout_ms) override;

    void command_consumed() override;

    /// Waits up to `timeout_ms` milliseconds for input and queues the commands that came.
    void check_for_commands(unsigned int timeout_ms);

    /// Queues a command unless it equals the one queued last.
    void add_command(Virtio_command command);

    /// The event types that a device can send, bit k for type k; 0 when it can't tell.
    static long supported_event_types(int descriptor);

 private:
    void evaluate(Input_record const& record);

    Input_devices devices_;
    std::deque<Virtio_command> queue_;
    Virtio_command last_command_{Virtio_command::none};  ///< accepted last; consuming doesn't reset it
    bool initialised_{false};
};

}  // namespace ximo::ap::statemanager::virtio

#endif
