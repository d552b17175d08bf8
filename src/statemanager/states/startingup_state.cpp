#include "statemanager/states/startingup_state.h"

#include "ara/log/logging.h"
#include "statemanager/absent_collaborators.h"
#include "statemanager/smw/shared_memory_update.h"

namespace ximo::ap::statemanager::states {

Startingup_state::Startingup_state(std::shared_ptr<Service_handler_interface> const& service_handler,
                                   std::shared_ptr<smw::Shared_memory_update> const& shared_memory,
                                   bool nm_usage_allowed)
    : State_interface(shared_memory, "Starting up"),
      service_handler_(or_absent(service_handler)),
      nm_usage_allowed_(nm_usage_allowed) {}

bool Startingup_state::entering_state() {
    ara::log::LogInfo() << "Entering startup state";
    report(&smw::Shared_memory_update::starting_up);
    return true;
}

unsigned Startingup_state::check_transition(virtio::Virtio_command const& /*command*/) {
    if (!nm_usage_allowed_ || service_handler_->nm_interface_available()) {
        return k_running;
    }
    ara::log::LogInfo() << "Transition form startup to running not possible. Waiting for nm interface.";
    return k_stay;
}

}  // namespace ximo::ap::statemanager::states
