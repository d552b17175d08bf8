#include "statemanager/states/preparing_state.h"

#include "ara/log/logging.h"
#include "statemanager/absent_collaborators.h"
#include "statemanager/smw/shared_memory_update.h"

#include <stdexcept>

namespace ximo::ap::statemanager::states {

using virtio::Virtio_command;

Preparing_state::Preparing_state(std::shared_ptr<Service_handler_interface> const& service_handler,
                                 std::shared_ptr<smw::Shared_memory_update> const& shared_memory,
                                 std::shared_ptr<state_notifier::State_notifier_interface> const& state_notifier,
                                 std::shared_ptr<fast_shutdown::Fast_shutdown_handler> const& fast_shutdown)
    : State_interface(shared_memory, "Preparing"),
      service_handler_(or_absent(service_handler)),
      state_notifier_(or_absent(state_notifier)),
      fast_shutdown_(or_absent(fast_shutdown)) {}

bool Preparing_state::entering_state() {
    ara::log::LogInfo() << "Entering preparing state";
    report(&smw::Shared_memory_update::preparing);
    state_notifier_->request_standby();
    prepare_fast_shutdown();
    service_handler_->standby();
    return true;
}

unsigned Preparing_state::check_transition(Virtio_command const& command) {
    // "Run" wins over the end of the notification; "Shutdown" waits in the queue for a state that takes it.
    if (command == Virtio_command::run) {
        return transition(k_resuming, "Transition from Preparing to Resuming");
    }
    if (state_notifier_->check_request_status() != 0) {
        return k_stay;
    }
    return k_prepared_sd;
}

void Preparing_state::prepare_fast_shutdown() const {
    try {
        fast_shutdown_->process_lookup();
    } catch (std::out_of_range const& error) {
        ara::log::LogError() << "Fast shutdown not prepared: " << error.what();
    }
}

}  // namespace ximo::ap::statemanager::states
