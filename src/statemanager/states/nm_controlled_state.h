#ifndef STATEMANAGER_STATES_NM_CONTROLLED_STATE_H
#define STATEMANAGER_STATES_NM_CONTROLLED_STATE_H

#include "statemanager/service_handler_interface.h"
#include "statemanager/states/state_interface.h"

namespace ximo::ap::statemanager::states {

/// The machine runs only as long as network management keeps it awake.
class Nm_controlled_state : public State_interface {
 public:
    Nm_controlled_state(std::shared_ptr<Service_handler_interface> const& service_handler,
                        std::shared_ptr<smw::Shared_memory_update> const& shared_memory);

    bool entering_state() override;
    unsigned check_transition(virtio::Virtio_command const& command) override;

 private:
    bool network_sleeps_and_ecu_is_kept_alive() const;
    bool network_sleeps_and_nobody_keeps_ecu_alive() const;

    std::shared_ptr<Service_handler_interface> service_handler_;
};

}  // namespace ximo::ap::statemanager::states

#endif
