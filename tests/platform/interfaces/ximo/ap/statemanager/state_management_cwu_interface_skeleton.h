#ifndef XIMO_AP_STATEMANAGER_STATE_MANAGEMENT_CWU_INTERFACE_SKELETON_H
#define XIMO_AP_STATEMANAGER_STATE_MANAGEMENT_CWU_INTERFACE_SKELETON_H

#include "ara/com/skeleton.h"
#include "ximo/com/future.h"

#include <cstdint>

namespace ximo::ap::statemanager::skeleton {

/// The server of waking the car up.
class StateManagementCWUInterfaceSkeleton : public ara::com::Skeleton {
 public:
    static constexpr char const* k_interface = "ximo::ap::statemanager::StateManagementCWUInterface";

    StateManagementCWUInterfaceSkeleton(ara::com::InstanceIdentifier const& instance,
                                        ara::com::MethodCallProcessingMode mode)
        : Skeleton(k_interface, instance, mode) {}

    virtual ximo::com::Future<void> ReleaseCarWakeUp() = 0;
    virtual ximo::com::Future<void> RequestCarWakeUp(std::uint8_t ac_number) = 0;
};

}  // namespace ximo::ap::statemanager::skeleton

#endif
