#ifndef STATEMANAGER_STATES_STARTINGUP_STATE_H
#define STATEMANAGER_STATES_STARTINGUP_STATE_H

#include "statemanager/service_handler_interface.h"
#include "statemanager/states/state_interface.h"

namespace ximo::ap::statemanager::states {

/// From the start of the daemon until network management has been found, or at once where it is not used.
class Startingup_state : public State_interface {
 public:
    Startingup_state(std::shared_ptr<Service_handler_interface> const& service_handler,
                     std::shared_ptr<smw::Shared_memory_update> const& shared_memory, bool nm_usage_allowed);

    bool entering_state() override;
    unsigned check_transition(virtio::Virtio_command const& command) override;

 private:
    std::shared_ptr<Service_handler_interface> service_handler_;
    bool nm_usage_allowed_;
};

}  // namespace ximo::ap::statemanager::states

#endif
