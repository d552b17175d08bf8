#ifndef STATEMANAGER_STATES_STATE_FACTORY_H
#define STATEMANAGER_STATES_STATE_FACTORY_H

#include "state_notifier/state_notifier_interface.h"
#include "statemanager/config/state_manager_config.h"
#include "statemanager/em_interface_abstract.h"
#include "statemanager/fast_shutdown/fast_shutdown_handler.h"
#include "statemanager/service_handler_interface.h"
#include "statemanager/smw/shared_memory_update.h"
#include "statemanager/states/state_interface.h"

#include <memory>

namespace ximo::ap::statemanager::states {

/// Builds the eight states, and once for all of them the collaborators that they share: the VM-control file, the
/// notifier of suspend and resume, and the channel of the fast shutdown. The collaborators live on in the states when
/// the factory is gone.
class State_factory {
 public:
    State_factory(config::State_manager_config const& configuration,
                  std::shared_ptr<Service_handler_interface> const& service_handler,
                  std::shared_ptr<Em_interface_abstract> const& execution_management);
    virtual ~State_factory() = default;
    State_factory(State_factory const&) = delete;
    State_factory& operator=(State_factory const&) = delete;

    /// One state with its configuration values as they are now; an empty pointer for an id above 7.
    std::unique_ptr<State_interface> create_state(unsigned id) const;

 private:
    config::State_manager_config const& configuration_;
    std::shared_ptr<Service_handler_interface> service_handler_;
    std::shared_ptr<Em_interface_abstract> execution_management_;
    std::shared_ptr<smw::Shared_memory_update> shared_memory_;
    std::shared_ptr<state_notifier::State_notifier_interface> state_notifier_;
    std::shared_ptr<fast_shutdown::Fast_shutdown_handler> fast_shutdown_;
};

}  // namespace ximo::ap::statemanager::states

#endif
