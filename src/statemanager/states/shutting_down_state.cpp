#include "statemanager/states/shutting_down_state.h"

#include "ara/log/logging.h"
#include "statemanager/absent_collaborators.h"
#include "statemanager/smw/shared_memory_update.h"

#include <chrono>
#include <stdexcept>

namespace ximo::ap::statemanager::states {

Shutting_down_state::Shutting_down_state(std::shared_ptr<Service_handler_interface> const& service_handler,
                                         std::shared_ptr<smw::Shared_memory_update> const& shared_memory,
                                         std::shared_ptr<Em_interface_abstract> const& execution_management,
                                         bool nm_usage_allowed, std::uint32_t pm_timeout,
                                         std::shared_ptr<fast_shutdown::Fast_shutdown_handler> const& fast_shutdown)
    : State_interface(shared_memory, "Shutting down"),
      service_handler_(or_absent(service_handler)),
      execution_management_(or_absent(execution_management)),
      nm_usage_allowed_(nm_usage_allowed),
      pm_timeout_(pm_timeout),
      fast_shutdown_(or_absent(fast_shutdown)) {}

bool Shutting_down_state::entering_state() {
    ara::log::LogInfo() << "Entering shutdown state";
    report(&smw::Shared_memory_update::shutting_down);
    return is_forced_shutdown() ? forced_shutdown() : normal_shutdown();
}

bool Shutting_down_state::is_forced_shutdown() {
    return get_forced_shutdown_flag() && fast_shutdown_->is_possible();
}

bool Shutting_down_state::normal_shutdown() {
    ara::log::LogInfo() << "Normal shutdown executed";
    execution_management_->request_shutdown();
    return true;
}

bool Shutting_down_state::forced_shutdown() {
    ara::log::LogInfo() << "Fast shutdown executed";
    try {
        fast_shutdown_->start_fast_shutdown(std::chrono::seconds{pm_timeout_});
    } catch (std::out_of_range const& error) {
        ara::log::LogError() << "Fast shutdown not completed: " << error.what();
    }
    return true;
}

}  // namespace ximo::ap::statemanager::states
