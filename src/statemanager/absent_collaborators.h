#ifndef STATEMANAGER_ABSENT_COLLABORATORS_H
#define STATEMANAGER_ABSENT_COLLABORATORS_H

#include "state_notifier/state_notifier_interface.h"
#include "statemanager/em_interface_abstract.h"
#include "statemanager/fast_shutdown/fast_shutdown_handler.h"
#include "statemanager/service_handler_interface.h"
#include "statemanager/smw/shared_memory_update.h"
#include "statemanager/supervision_manager_interface.h"
#include "statemanager/virtio_interface_abstract.h"

#include <memory>

namespace ximo::ap::statemanager {

// Each gives the collaborator that it was given or, where none was given, one that does nothing and answers "no", so
// that a cycle runs on without it.
std::shared_ptr<Service_handler_interface> or_absent(std::shared_ptr<Service_handler_interface> service_handler);
std::shared_ptr<Em_interface_abstract> or_absent(std::shared_ptr<Em_interface_abstract> execution_management);
std::shared_ptr<state_notifier::State_notifier_interface> or_absent(
    std::shared_ptr<state_notifier::State_notifier_interface> state_notifier);
std::shared_ptr<smw::Shared_memory_update> or_absent(std::shared_ptr<smw::Shared_memory_update> shared_memory);
std::shared_ptr<fast_shutdown::Fast_shutdown_handler> or_absent(
    std::shared_ptr<fast_shutdown::Fast_shutdown_handler> fast_shutdown);
std::unique_ptr<virtio::Virtio_interface_abstract> or_absent(
    std::unique_ptr<virtio::Virtio_interface_abstract> virtual_input);
std::unique_ptr<phm::Supervision_manager_interface> or_absent(
    std::unique_ptr<phm::Supervision_manager_interface> supervision);

}  // namespace ximo::ap::statemanager

#endif
