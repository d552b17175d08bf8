#include "statemanager/states/prepared_sd_state.h"

#include "ara/log/logging.h"
#include "statemanager/smw/shared_memory_update.h"

namespace ximo::ap::statemanager::states {

using virtio::Virtio_command;

PreparedSD_state::PreparedSD_state(std::shared_ptr<smw::Shared_memory_update> const& shared_memory)
    : State_interface(shared_memory, "PreparedSD") {}

bool PreparedSD_state::entering_state() {
    ara::log::LogInfo() << "Entering PreparedSD state";
    report(&smw::Shared_memory_update::prepared_4_sd);
    return true;
}

unsigned PreparedSD_state::check_transition(Virtio_command const& command) {
    if (command == Virtio_command::run) {
        return transition(k_resuming, "Transition from PreparedSD to Resuming");
    }
    // Nothing runs any more that a normal shutdown would have to wait for.
    if (command == Virtio_command::shutdown) {
        set_forced_shutdown_flag(true);
        return transition(k_shutting_down, "Transition from PreparedSD to Shutting Down");
    }
    return k_stay;
}

}  // namespace ximo::ap::statemanager::states
