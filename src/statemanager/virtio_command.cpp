#include "statemanager/virtio_command.h"

#include <map>

namespace ximo::ap::statemanager::virtio {

namespace {

using Name_map = std::map<Virtio_command, std::string>;

// Built on first use and never destroyed: the driver may log a command while static objects are already going.
Name_map const& names() {
    static auto const* const map = new Name_map{
        {Virtio_command::none, "Non"},
        {Virtio_command::run, "Run"},
        {Virtio_command::nm_controlled, "NmControlled"},
        {Virtio_command::nm_controlled_prepare_sd, "NMControlledPrepareSD"},
        {Virtio_command::prepare_sd, "PrepareSD"},
        {Virtio_command::shutdown, "Shutdown"},
    };
    return *map;
}

}  // namespace

std::string toString(Virtio_command const& command) {
    auto const found = names().find(command);
    return found == names().end() ? std::string{} : found->second;
}

}  // namespace ximo::ap::statemanager::virtio
