#ifndef STATEMANAGER_ABSENT_COLLABORATORS_H
#define STATEMANAGER_ABSENT_COLLABORATORS_H

#include "state_notifier/state_notifier_interface.h"
#include "statemanager/em_interface_abstract.h"
#include "statemanager/service_handler_interface.h"

#include <memory>

namespace ximo::ap::statemanager {

// Each gives the collaborator that it was given or, where none was given, one that does nothing and answers "no", so
// that a cycle runs on without it.
std::shared_ptr<Service_handler_interface> or_absent(std::shared_ptr<Service_handler_interface> service_handler);
std::shared_ptr<Em_interface_abstract> or_absent(std::shared_ptr<Em_interface_abstract> execution_management);
std::shared_ptr<state_notifier::State_notifier_interface> or_absent(
    std::shared_ptr<state_notifier::State_notifier_interface> state_notifier);

}  // namespace ximo::ap::statemanager

#endif
