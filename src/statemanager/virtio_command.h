#ifndef STATEMANAGER_VIRTIO_COMMAND_H
#define STATEMANAGER_VIRTIO_COMMAND_H

#include <cstdint>
#include <string>

namespace ximo::ap::statemanager::virtio {

/// What the hypervisor wants of this machine. One byte; the numbers are part of the interface.
enum class Virtio_command : std::uint8_t {
    none = 0,                      ///< no command is waiting
    run = 1,                       ///< run, whatever the network does
    nm_controlled = 2,             ///< run as long as the network does, then power off
    nm_controlled_prepare_sd = 3,  ///< run as long as the network does, then suspend
    prepare_sd = 4,                ///< suspend now
    shutdown = 5,                  ///< power off now
};

/// The display name of a command as the log shows it; empty for a value that is no command.
std::string toString(Virtio_command const& command);

}  // namespace ximo::ap::statemanager::virtio

#endif
