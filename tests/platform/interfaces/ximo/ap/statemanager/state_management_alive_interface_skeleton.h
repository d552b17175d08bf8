#ifndef XIMO_AP_STATEMANAGER_STATE_MANAGEMENT_ALIVE_INTERFACE_SKELETON_H
#define XIMO_AP_STATEMANAGER_STATE_MANAGEMENT_ALIVE_INTERFACE_SKELETON_H

#include "ara/com/skeleton.h"
#include "ximo/com/future.h"

namespace ximo::ap::statemanager::skeleton {

/// The server of keeping the ECU alive.
class StateManagementAliveInterfaceSkeleton : public ara::com::Skeleton {
 public:
    static constexpr char const* k_interface = "ximo::ap::statemanager::StateManagementAliveInterface";

    StateManagementAliveInterfaceSkeleton(ara::com::InstanceIdentifier const& instance,
                                          ara::com::MethodCallProcessingMode mode)
        : Skeleton(k_interface, instance, mode) {}

    virtual ximo::com::Future<void> ReleaseAlive() = 0;
    virtual ximo::com::Future<void> RequestAlive() = 0;
};

}  // namespace ximo::ap::statemanager::skeleton

#endif
