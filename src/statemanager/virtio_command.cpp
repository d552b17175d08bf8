#include "statemanager/virtio_command.h"

namespace ximo::ap::statemanager::virtio {

std::string toString(Virtio_command const& command) {
    switch (command) {
        case Virtio_command::none:
            return "Non";
        case Virtio_command::run:
            return "Run";
        case Virtio_command::nm_controlled:
            return "NmControlled";
        case Virtio_command::nm_controlled_prepare_sd:
            return "NMControlledPrepareSD";
        case Virtio_command::prepare_sd:
            return "PrepareSD";
        case Virtio_command::shutdown:
            return "Shutdown";
    }
    return {};
}

}  // namespace ximo::ap::statemanager::virtio
