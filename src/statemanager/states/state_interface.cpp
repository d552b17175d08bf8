#include "statemanager/states/state_interface.h"

#include "ara/log/logging.h"
#include "statemanager/absent_collaborators.h"
#include "statemanager/smw/shared_memory_update.h"

namespace ximo::ap::statemanager::states {

State_interface::Runtime_config State_interface::runtime_config;

State_interface::State_interface(std::shared_ptr<smw::Shared_memory_update> const& shared_memory,
                                 std::string const& name)
    : shared_memory_(or_absent(shared_memory)), name_(name) {}

unsigned State_interface::check_transition(virtio::Virtio_command const& /*command*/) {
    return k_stay;
}

void State_interface::report(void (smw::Shared_memory_update::*state_word)()) {
    (*shared_memory_.*state_word)();
}

unsigned State_interface::transition(State_id target, char const* reason) {
    ara::log::LogVerbose() << reason;
    return target;
}

unsigned State_interface::transition_clearing_prepare_SD(State_id target, char const* reason) {
    set_prepare_SD_flag(false);
    return transition(target, reason);
}

}  // namespace ximo::ap::statemanager::states
