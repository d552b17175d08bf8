#ifndef STATEMANAGER_STATES_POST_RUN_STATE_H
#define STATEMANAGER_STATES_POST_RUN_STATE_H

#include "statemanager/service_handler_interface.h"
#include "statemanager/states/knockout_handler.h"
#include "statemanager/states/state_interface.h"

namespace ximo::ap::statemanager::states {

/// The network sleeps, and applications may keep the ECU alive for a bounded number of cycles.
class Post_run_state : public State_interface {
 public:
    /// `knockout_cycles`: cycles that the state stays at most for the applications' sake.
    Post_run_state(std::shared_ptr<Service_handler_interface> const& service_handler,
                   std::shared_ptr<smw::Shared_memory_update> const& shared_memory, std::uint32_t knockout_cycles);

    bool entering_state() override;
    void tick() override;
    unsigned check_transition(virtio::Virtio_command const& command) override;

 private:
    bool is_released() const;

    std::shared_ptr<Service_handler_interface> service_handler_;
    Knockout_handler knockout_;
};

}  // namespace ximo::ap::statemanager::states

#endif
