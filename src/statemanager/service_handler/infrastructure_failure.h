#ifndef STATEMANAGER_SERVICE_HANDLER_INFRASTRUCTURE_FAILURE_H
#define STATEMANAGER_SERVICE_HANDLER_INFRASTRUCTURE_FAILURE_H

#include "ara/log/logging.h"
#include "tarq/com/exception.h"

namespace ximo::ap::statemanager {

/// Does something by way of the communication binding. A failure of the binding is logged and makes the result false;
/// what else goes wrong reaches the caller.
template <class Action>
bool succeeds(Action const& action) {
    try {
        action();
        return true;
    } catch (tarq::com::Infrastructure_exception const& error) {
        ara::log::LogError() << "infrastructure exception " << error.what();
        return false;
    }
}

}  // namespace ximo::ap::statemanager

#endif
