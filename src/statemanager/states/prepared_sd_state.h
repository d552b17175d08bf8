#ifndef STATEMANAGER_STATES_PREPARED_SD_STATE_H
#define STATEMANAGER_STATES_PREPARED_SD_STATE_H

#include "statemanager/states/state_interface.h"

namespace ximo::ap::statemanager::states {

/// Ready to be suspended: stays until the hypervisor resumes the machine or powers it off.
class PreparedSD_state : public State_interface {
 public:
    explicit PreparedSD_state(std::shared_ptr<smw::Shared_memory_update> const& shared_memory);

    bool entering_state() override;
    unsigned check_transition(virtio::Virtio_command const& command) override;
};

}  // namespace ximo::ap::statemanager::states

#endif
