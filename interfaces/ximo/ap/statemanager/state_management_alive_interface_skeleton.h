#ifndef XIMO_AP_STATEMANAGER_STATE_MANAGEMENT_ALIVE_INTERFACE_SKELETON_H
#define XIMO_AP_STATEMANAGER_STATE_MANAGEMENT_ALIVE_INTERFACE_SKELETON_H

#include "ara/com/instance.h"
#include "ara/com/skeleton.h"
#include "ximo/com/future.h"

namespace ximo::ap::statemanager::skeleton {

/// Server side of the service that keeps the ECU awake for one application. A deriving class implements the methods;
/// threads of the binding call them.
class StateManagementAliveInterfaceSkeleton : public ara::com::Skeleton {
 public:
    /// Throws `tarq::com::Invalid_argument_exception` for another mode than kEvent.
    StateManagementAliveInterfaceSkeleton(ara::com::InstanceIdentifier instance,
                                          ara::com::MethodCallProcessingMode mode);

    virtual ximo::com::Future<void> ReleaseAlive() = 0;
    virtual ximo::com::Future<void> RequestAlive() = 0;
};

}  // namespace ximo::ap::statemanager::skeleton

#endif
