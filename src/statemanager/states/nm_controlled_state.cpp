#include "statemanager/states/nm_controlled_state.h"

#include "ara/log/logging.h"
#include "statemanager/absent_collaborators.h"
#include "statemanager/smw/shared_memory_update.h"

namespace ximo::ap::statemanager::states {

using virtio::Virtio_command;

Nm_controlled_state::Nm_controlled_state(std::shared_ptr<Service_handler_interface> const& service_handler,
                                         std::shared_ptr<smw::Shared_memory_update> const& shared_memory)
    : State_interface(shared_memory, "NM Controlled"), service_handler_(or_absent(service_handler)) {}

bool Nm_controlled_state::entering_state() {
    ara::log::LogInfo() << "Entering NM controled state";
    report(&smw::Shared_memory_update::run_nm_controlled);
    service_handler_->release_network();
    return true;
}

unsigned Nm_controlled_state::check_transition(Virtio_command const& command) {
    // "Run" wins over every condition of the network.
    if (command == Virtio_command::run) {
        return transition_clearing_prepare_SD(k_running, "Transition form NM controled state to Running possible.");
    }
    // An application that keeps the ECU alive wins over "Shutdown"; the intention to suspend is kept for later.
    if (network_sleeps_and_ecu_is_kept_alive()) {
        return transition(k_post_run, "Transition form NM controled state to Post Run possible.");
    }
    if (command == Virtio_command::shutdown ||
        (network_sleeps_and_nobody_keeps_ecu_alive() && !get_prepare_SD_flag())) {
        return transition_clearing_prepare_SD(k_shutting_down,
                                              "Transition form NM controled state to Shutting Down possible.");
    }
    if (command == Virtio_command::prepare_sd ||
        (network_sleeps_and_nobody_keeps_ecu_alive() && get_prepare_SD_flag())) {
        return transition_clearing_prepare_SD(k_preparing,
                                              "Transition form NM controled state to Preparing (transient) possible.");
    }
    return k_stay;
}

bool Nm_controlled_state::network_sleeps_and_ecu_is_kept_alive() const {
    return service_handler_->ecu_in_sleep_mode() && service_handler_->apps_keep_ecu_alive();
}

bool Nm_controlled_state::network_sleeps_and_nobody_keeps_ecu_alive() const {
    return service_handler_->ecu_in_sleep_mode() && !service_handler_->apps_keep_ecu_alive();
}

}  // namespace ximo::ap::statemanager::states
