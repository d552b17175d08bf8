#include "statemanager/states/state_factory.h"

#include "state_notifier/state_notifier.h"
#include "statemanager/states/nm_controlled_state.h"
#include "statemanager/states/post_run_state.h"
#include "statemanager/states/prepared_sd_state.h"
#include "statemanager/states/preparing_state.h"
#include "statemanager/states/resuming_state.h"
#include "statemanager/states/running_state.h"
#include "statemanager/states/shutting_down_state.h"
#include "statemanager/states/startingup_state.h"

#include <chrono>

namespace ximo::ap::statemanager::states {

State_factory::State_factory(config::State_manager_config const& configuration,
                             std::shared_ptr<Service_handler_interface> const& service_handler,
                             std::shared_ptr<Em_interface_abstract> const& execution_management)
    : configuration_(configuration),
      service_handler_(service_handler),
      execution_management_(execution_management),
      shared_memory_(std::make_shared<smw::Shared_memory_update>(configuration_.get_smw_update_status_path())),
      state_notifier_(
          std::make_shared<state_notifier::State_notifier>(std::chrono::seconds(configuration_.get_app_timeout()),
                                                           std::chrono::seconds(configuration_.get_dm_timeout()))),
      fast_shutdown_(std::make_shared<fast_shutdown::Fast_shutdown_handler>("/run/adaptive/poweroff")) {}

std::unique_ptr<State_interface> State_factory::create_state(unsigned id) const {
    switch (id) {
        case k_starting_up:
            return std::make_unique<Startingup_state>(service_handler_, shared_memory_,
                                                      configuration_.is_nm_usage_allowed());
        case k_running:
            return std::make_unique<Running_state>(service_handler_, shared_memory_, execution_management_,
                                                   configuration_.is_nm_usage_allowed(),
                                                   configuration_.is_request_network_on_entry_run_state_requested());
        case k_nm_controlled:
            return std::make_unique<Nm_controlled_state>(service_handler_, shared_memory_);
        case k_post_run:
            return std::make_unique<Post_run_state>(service_handler_, shared_memory_,
                                                    configuration_.get_knockout_timer());
        case k_shutting_down:
            return std::make_unique<Shutting_down_state>(service_handler_, shared_memory_, execution_management_,
                                                         configuration_.is_nm_usage_allowed(),
                                                         configuration_.get_pm_timeout(), fast_shutdown_);
        case k_preparing:
            return std::make_unique<Preparing_state>(service_handler_, shared_memory_, state_notifier_, fast_shutdown_);
        case k_prepared_sd:
            return std::make_unique<PreparedSD_state>(shared_memory_);
        case k_resuming:
            return std::make_unique<Resuming_state>(service_handler_, shared_memory_, state_notifier_);
        default:
            return nullptr;
    }
}

}  // namespace ximo::ap::statemanager::states
