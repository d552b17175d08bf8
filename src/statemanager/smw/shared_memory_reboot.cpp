#include "statemanager/smw/shared_memory_reboot.h"

#include "status/restart_status.h"

#include <utility>

namespace ximo::ap::statemanager::smw {

Shared_memory_reboot::Shared_memory_reboot(std::string path) : Shared_memory_writer_interface(std::move(path)) {}

void Shared_memory_reboot::restart_vm() {
    try_reboot("restartao");
}

void Shared_memory_reboot::restart_m3() {
    try_reboot("restartm3");
}

void Shared_memory_reboot::try_reboot(std::string const& command) {
    if (!write_to_memory(command)) {
        write_to_memory("cancel");
        if (!write_to_memory(command)) {
            status::restart_failed();
        }
    }
}

}  // namespace ximo::ap::statemanager::smw
