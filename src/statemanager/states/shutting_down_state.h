#ifndef STATEMANAGER_STATES_SHUTTING_DOWN_STATE_H
#define STATEMANAGER_STATES_SHUTTING_DOWN_STATE_H

#include "statemanager/em_interface_abstract.h"
#include "statemanager/fast_shutdown/fast_shutdown_handler.h"
#include "statemanager/service_handler_interface.h"
#include "statemanager/states/state_interface.h"

namespace ximo::ap::statemanager::states {

/// The end: power off normally through execution management, or by the fast path when power-off was requested while
/// suspended and that path is open. No transition leads out.
class Shutting_down_state : public State_interface {
 public:
    /// `pm_timeout`: time budget of a fast power-off, in seconds.
    Shutting_down_state(std::shared_ptr<Service_handler_interface> const& service_handler,
                        std::shared_ptr<smw::Shared_memory_update> const& shared_memory,
                        std::shared_ptr<Em_interface_abstract> const& execution_management, bool nm_usage_allowed,
                        std::uint32_t pm_timeout,
                        std::shared_ptr<fast_shutdown::Fast_shutdown_handler> const& fast_shutdown);

    bool entering_state() override;
    bool is_forced_shutdown() override;

    virtual bool normal_shutdown();
    virtual bool forced_shutdown();

 private:
    std::shared_ptr<Service_handler_interface> service_handler_;
    std::shared_ptr<Em_interface_abstract> execution_management_;
    [[maybe_unused]] bool nm_usage_allowed_;
    std::uint32_t pm_timeout_;
    std::shared_ptr<fast_shutdown::Fast_shutdown_handler> fast_shutdown_;
};

}  // namespace ximo::ap::statemanager::states

#endif
