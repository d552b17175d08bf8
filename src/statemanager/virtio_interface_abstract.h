#ifndef STATEMANAGER_VIRTIO_INTERFACE_ABSTRACT_H
#define STATEMANAGER_VIRTIO_INTERFACE_ABSTRACT_H

#include "statemanager/virtio_command.h"

#include <string>

namespace ximo::ap::statemanager::virtio {

/// The hypervisor's commands, as the driver takes them: one at a time, oldest first.
///
/// `init()` once, then in each cycle `get_command()`, and `command_consumed()` once the command has been acted on; a
/// command that is not consumed is offered again. Used by the driver's thread alone.
class Virtio_interface_abstract {
 public:
    Virtio_interface_abstract() = default;
    virtual ~Virtio_interface_abstract() = default;
    Virtio_interface_abstract(Virtio_interface_abstract const&) = delete;
    Virtio_interface_abstract& operator=(Virtio_interface_abstract const&) = delete;

    /// Opens the input devices of a directory; false when one of them can't be used or none is there.
    virtual bool init(std::string device_directory) = 0;

    /// Waits up to `timeout_ms` milliseconds for input, then gives the oldest command without removing it, or none.
    virtual Virtio_command get_command(unsigned int timeout_ms) = 0;

    /// Removes the oldest command.
    virtual void command_consumed() = 0;
};

}  // namespace ximo::ap::statemanager::virtio

#endif
