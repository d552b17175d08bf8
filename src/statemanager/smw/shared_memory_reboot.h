#ifndef STATEMANAGER_SMW_SHARED_MEMORY_REBOOT_H
#define STATEMANAGER_SMW_SHARED_MEMORY_REBOOT_H

#include "statemanager/smw/shared_memory_writer_interface.h"

#include <string>

namespace ximo::ap::statemanager::smw {

/// Asks the hypervisor for restarts, by words into the command file.
class Shared_memory_reboot : public Shared_memory_writer_interface {
 public:
    explicit Shared_memory_reboot(std::string path);

    /// Asks for a restart of this virtual machine.
    virtual void restart_vm();

    /// Asks for a restart of the co-processor.
    virtual void restart_m3();

    /// Writes a request. When that fails a "cancel" takes back what may be left of it, and the request is made once
    /// more; whether these two get through is not looked at.
    void try_reboot(std::string const& command);
};

}  // namespace ximo::ap::statemanager::smw

#endif
