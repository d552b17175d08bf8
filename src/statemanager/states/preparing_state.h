#ifndef STATEMANAGER_STATES_PREPARING_STATE_H
#define STATEMANAGER_STATES_PREPARING_STATE_H

#include "state_notifier/state_notifier_interface.h"
#include "statemanager/fast_shutdown/fast_shutdown_handler.h"
#include "statemanager/service_handler_interface.h"
#include "statemanager/states/state_interface.h"

namespace ximo::ap::statemanager::states {

/// On the way to a suspend: applications and diagnostics are told to stand by, until all have answered or had their
/// time.
class Preparing_state : public State_interface {
 public:
    Preparing_state(std::shared_ptr<Service_handler_interface> const& service_handler,
                    std::shared_ptr<smw::Shared_memory_update> const& shared_memory,
                    std::shared_ptr<state_notifier::State_notifier_interface> const& state_notifier,
                    std::shared_ptr<fast_shutdown::Fast_shutdown_handler> const& fast_shutdown);

    bool entering_state() override;
    unsigned check_transition(virtio::Virtio_command const& command) override;

 private:
    void prepare_fast_shutdown() const;

    std::shared_ptr<Service_handler_interface> service_handler_;
    std::shared_ptr<state_notifier::State_notifier_interface> state_notifier_;
    std::shared_ptr<fast_shutdown::Fast_shutdown_handler> fast_shutdown_;
};

}  // namespace ximo::ap::statemanager::states

#endif
