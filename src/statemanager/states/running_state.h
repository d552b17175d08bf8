#ifndef STATEMANAGER_STATES_RUNNING_STATE_H
#define STATEMANAGER_STATES_RUNNING_STATE_H

#include "statemanager/em_interface_abstract.h"
#include "statemanager/service_handler_interface.h"
#include "statemanager/states/state_interface.h"

namespace ximo::ap::statemanager::states {

/// The machine runs because the hypervisor says so, whatever the network does.
class Running_state : public State_interface {
 public:
    Running_state(std::shared_ptr<Service_handler_interface> const& service_handler,
                  std::shared_ptr<smw::Shared_memory_update> const& shared_memory,
                  std::shared_ptr<Em_interface_abstract> const& execution_management, bool nm_usage_allowed,
                  bool request_network_on_entry);

    bool entering_state() override;
    unsigned check_transition(virtio::Virtio_command const& command) override;

 private:
    std::shared_ptr<Service_handler_interface> service_handler_;
    std::shared_ptr<Em_interface_abstract> execution_management_;
    bool nm_usage_allowed_;
    bool request_network_on_entry_;
};

}  // namespace ximo::ap::statemanager::states

#endif
