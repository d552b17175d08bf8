#ifndef XIMO_AP_STATEMANAGER_STATE_MANAGEMENT_CWU_INTERFACE_SKELETON_H
#define XIMO_AP_STATEMANAGER_STATE_MANAGEMENT_CWU_INTERFACE_SKELETON_H

#include "ara/com/instance.h"
#include "ara/com/skeleton.h"
#include "ximo/com/future.h"

#include <cstdint>

namespace ximo::ap::statemanager::skeleton {

/// Server side of the service that wakes the whole vehicle for one application. A deriving class implements the
/// methods; threads of the binding call them.
class StateManagementCWUInterfaceSkeleton : public ara::com::Skeleton {
 public:
    /// Throws `tarq::com::Invalid_argument_exception` for another mode than kEvent.
    StateManagementCWUInterfaceSkeleton(ara::com::InstanceIdentifier instance, ara::com::MethodCallProcessingMode mode);

    virtual ximo::com::Future<void> ReleaseCarWakeUp() = 0;
    virtual ximo::com::Future<void> RequestCarWakeUp(std::uint8_t ac_number) = 0;
};

}  // namespace ximo::ap::statemanager::skeleton

#endif
