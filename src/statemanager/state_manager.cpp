#include "statemanager/state_manager.h"

#include "ara/log/logging.h"
#include "statemanager/absent_collaborators.h"
#include "statemanager/states/state_factory.h"
#include "status/driver_status.h"

#include <utility>

namespace ximo::ap::statemanager {

using states::k_shutting_down;
using states::k_stay;

State_manager::State_manager(config::State_manager_config const& configuration,
                             std::shared_ptr<Service_handler_interface> const& service_handler,
                             std::shared_ptr<Em_interface_abstract> const& execution_management,
                             std::unique_ptr<virtio::Virtio_interface_abstract> virtual_input,
                             std::unique_ptr<phm::Supervision_manager_interface> supervision)
    : configuration_(configuration),
      service_handler_(or_absent(service_handler)),
      execution_management_(or_absent(execution_management)),
      virtual_input_(or_absent(std::move(virtual_input))),
      supervision_(or_absent(std::move(supervision))) {}

bool State_manager::init() {
    if (!virtual_input_->init("/dev/input")) {
        ara::log::LogError() << "AP_StateManger failed to initialize VirtIO";
        return false;
    }
    service_handler_->init();
    states::State_factory const factory(configuration_, service_handler_, execution_management_);
    for (auto const id : {states::k_starting_up, states::k_running, states::k_nm_controlled, states::k_post_run,
                          states::k_shutting_down, states::k_preparing, states::k_resuming, states::k_prepared_sd}) {
        states_[id] = factory.create_state(id);
    }
    states_[current_]->entering_state();
    running_ = true;
    return true;
}

void State_manager::run() {
    application_client_.ReportApplicationState(ara::exec::ApplicationState::kRunning);
    ara::log::LogInfo() << "AP_StateManger daemon started";
    while (running_) {
        run_cyclic_task();
    }
    status::log_lost(ara::log::LostMessages());
    status::loop_ended();
    service_handler_->deinit();
    ara::log::LogInfo() << "AP_StateManger reporting kTerminating to EM";
    application_client_.ReportApplicationState(ara::exec::ApplicationState::kTerminating);
}

void State_manager::run_cyclic_task() {
    ara::log::LogVerbose() << "Starting AP_StateManager run_cyclic_task";
    if (!running_) {
        ara::log::LogError() << "AP_StateManger not initialized";
        return;
    }
    status::beat(states::State_interface::get_prepare_SD_flag(), states::State_interface::get_forced_shutdown_flag());
    status::log_lost(ara::log::LostMessages());
    supervision_->report_alive_status();
    // The only wait of the loop.
    auto const command = virtual_input_->get_command(configuration_.get_main_function_period());
    auto const next = states_[current_]->check_transition(command);
    if (next == k_stay) {
        states_[current_]->tick();
    } else {
        change_state(next, command);
    }
}

void State_manager::change_state(unsigned next, virtio::Virtio_command command) {
    auto const left = current_;
    auto const leaving = states_[current_]->get_name();
    current_ = states::state_of(next);
    auto& entered = *states_[current_];
    ara::log::LogInfo() << "AP_StateManger transition from" << leaving << " to " << entered.get_name();
    status::transition(left, current_, static_cast<std::uint64_t>(command));
    entered.entering_state();
    if (current_ == k_shutting_down && !entered.is_forced_shutdown()) {
        running_ = false;
    }
    // Whatever caused the transition, the command that waited is done with.
    virtual_input_->command_consumed();
}

void State_manager::shutdown() {
    ara::log::LogInfo() << "Shutting down AP_StateManger";
    running_ = false;
}

}  // namespace ximo::ap::statemanager
