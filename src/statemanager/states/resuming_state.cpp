#include "statemanager/states/resuming_state.h"

#include "ara/log/logging.h"
#include "statemanager/absent_collaborators.h"
#include "statemanager/smw/shared_memory_update.h"

namespace ximo::ap::statemanager::states {

using virtio::Virtio_command;

Resuming_state::Resuming_state(std::shared_ptr<Service_handler_interface> const& service_handler,
                               std::shared_ptr<smw::Shared_memory_update> const& shared_memory,
                               std::shared_ptr<state_notifier::State_notifier_interface> const& state_notifier)
    : State_interface(shared_memory, "Resuming"),
      service_handler_(or_absent(service_handler)),
      state_notifier_(or_absent(state_notifier)) {}

bool Resuming_state::entering_state() {
    ara::log::LogInfo() << "Entering resuming state";
    report(&smw::Shared_memory_update::resuming);
    state_notifier_->request_resume();
    service_handler_->end_standby();
    return true;
}

unsigned Resuming_state::check_transition(Virtio_command const& command) {
    if (command == Virtio_command::shutdown) {
        return transition(k_shutting_down, "Transition form Resuming state to Shutting Down possible.");
    }
    if (state_notifier_->check_request_status() != 0) {
        return k_stay;
    }
    return k_running;
}

}  // namespace ximo::ap::statemanager::states
