#include "statemanager/states/post_run_state.h"

#include "ara/log/logging.h"
#include "statemanager/absent_collaborators.h"
#include "statemanager/smw/shared_memory_update.h"
#include "status/driver_status.h"

namespace ximo::ap::statemanager::states {

using virtio::Virtio_command;

Post_run_state::Post_run_state(std::shared_ptr<Service_handler_interface> const& service_handler,
                               std::shared_ptr<smw::Shared_memory_update> const& shared_memory,
                               std::uint32_t knockout_cycles)
    : State_interface(shared_memory, "Post Run"),
      service_handler_(or_absent(service_handler)),
      knockout_(knockout_cycles) {}

bool Post_run_state::entering_state() {
    ara::log::LogInfo() << "Entering post run state";
    report(&smw::Shared_memory_update::post_run);
    knockout_.reset_knockout_timer();
    status::knockout_left(knockout_.get_knockout_timer_value());
    return true;
}

void Post_run_state::tick() {
    ara::log::LogDebug() << "Post rumn tick action";
    knockout_.update_knockout_timer();
    status::knockout_left(knockout_.get_knockout_timer_value());
}

unsigned Post_run_state::check_transition(Virtio_command const& command) {
    // An application that keeps communication alive wins over every command.
    if (service_handler_->apps_keep_com_alive()) {
        return transition(k_nm_controlled, "Transition form Post Run state to NmControlled possible.");
    }
    if (command == Virtio_command::shutdown || (is_released() && !get_prepare_SD_flag())) {
        return transition_clearing_prepare_SD(k_shutting_down,
                                              "Transition form Post Run state to Shutting Down possible.");
    }
    if (command == Virtio_command::run) {
        return transition_clearing_prepare_SD(k_running, "Transition form Post Run state to Running possible.");
    }
    if (command == Virtio_command::prepare_sd || (is_released() && get_prepare_SD_flag())) {
        return transition_clearing_prepare_SD(k_preparing,
                                              "Transition form Post Run state to Preparing (transient) possible.");
    }
    return k_stay;
}

// Nobody keeps the ECU alive any more, or those who do have had their time.
bool Post_run_state::is_released() const {
    return !service_handler_->apps_keep_ecu_alive() || knockout_.is_knockout_timer_expired();
}

}  // namespace ximo::ap::statemanager::states
