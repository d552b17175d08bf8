#ifndef XIMO_AP_STATEMANAGER_DSA_INTERFACE_SKELETON_H
#define XIMO_AP_STATEMANAGER_DSA_INTERFACE_SKELETON_H

#include "ara/com/instance.h"
#include "ara/com/skeleton.h"
#include "ximo/com/future.h"

#include <cstdint>

namespace ximo::ap::statemanager::skeleton {

/// Server side of the service that restarts the machine or the microcontroller for diagnostics. A deriving class
/// implements the methods; threads of the binding call them.
class DSAInterfaceSkeleton : public ara::com::Skeleton {
 public:
    /// Throws `tarq::com::Invalid_argument_exception` for another mode than kEvent.
    DSAInterfaceSkeleton(ara::com::InstanceIdentifier instance, ara::com::MethodCallProcessingMode mode);

    virtual ximo::com::Future<void> RequestRestart(std::uint8_t RestartType) = 0;
};

}  // namespace ximo::ap::statemanager::skeleton

#endif
