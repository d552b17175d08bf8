#ifndef STATEMANAGER_STATES_RESUMING_STATE_H
#define STATEMANAGER_STATES_RESUMING_STATE_H

#include "state_notifier/state_notifier_interface.h"
#include "statemanager/service_handler_interface.h"
#include "statemanager/states/state_interface.h"

namespace ximo::ap::statemanager::states {

/// On the way back from a suspend: applications and diagnostics are told to resume.
class Resuming_state : public State_interface {
 public:
    Resuming_state(std::shared_ptr<Service_handler_interface> const& service_handler,
                   std::shared_ptr<smw::Shared_memory_update> const& shared_memory,
                   std::shared_ptr<state_notifier::State_notifier_interface> const& state_notifier);

    bool entering_state() override;
    unsigned check_transition(virtio::Virtio_command const& command) override;

 private:
    std::shared_ptr<Service_handler_interface> service_handler_;
    std::shared_ptr<state_notifier::State_notifier_interface> state_notifier_;
};

}  // namespace ximo::ap::statemanager::states

#endif
