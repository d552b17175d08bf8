#include "statemanager/states/running_state.h"

#include "ara/log/logging.h"
#include "statemanager/absent_collaborators.h"
#include "statemanager/smw/shared_memory_update.h"

namespace ximo::ap::statemanager::states {

using virtio::Virtio_command;

Running_state::Running_state(std::shared_ptr<Service_handler_interface> const& service_handler,
                             std::shared_ptr<smw::Shared_memory_update> const& shared_memory,
                             std::shared_ptr<Em_interface_abstract> const& execution_management, bool nm_usage_allowed,
                             bool request_network_on_entry)
    : State_interface(shared_memory, "Running"),
      service_handler_(or_absent(service_handler)),
      execution_management_(or_absent(execution_management)),
      nm_usage_allowed_(nm_usage_allowed),
      request_network_on_entry_(request_network_on_entry) {}

bool Running_state::entering_state() {
    ara::log::LogInfo() << "Entering running state";
    report(&smw::Shared_memory_update::running);
    if (nm_usage_allowed_ && request_network_on_entry_) {
        service_handler_->request_network();
    }
    execution_management_->request_running();
    return true;
}

unsigned Running_state::check_transition(Virtio_command const& command) {
    // Where network management is not used its commands are never acted on; they stay queued.
    if (command == Virtio_command::nm_controlled && nm_usage_allowed_) {
        set_prepare_SD_flag(false);
        return transition(k_nm_controlled,
                          "Transition from Running to NM controlled possible. Prepare SD flag set to false state.");
    }
    if (command == Virtio_command::nm_controlled_prepare_sd && nm_usage_allowed_) {
        set_prepare_SD_flag(true);
        return transition(k_nm_controlled,
                          "Transition from Running to NM controlled possible.  Prepare SD flag set to true state.");
    }
    if (command == Virtio_command::prepare_sd) {
        return transition(k_preparing, "Transition form Running to Preparing Shutting Down possible.");
    }
    if (command == Virtio_command::shutdown) {
        return transition(k_shutting_down, "Transition form Running to Shutting Down possible.");
    }
    return k_stay;
}

}  // namespace ximo::ap::statemanager::states
