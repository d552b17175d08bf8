#ifndef XIMO_AP_STATEMANAGER_STATE_MANAGEMENT_COM_ALIVE_INTERFACE_SKELETON_H
#define XIMO_AP_STATEMANAGER_STATE_MANAGEMENT_COM_ALIVE_INTERFACE_SKELETON_H

#include "ara/com/instance.h"
#include "ara/com/skeleton.h"
#include "ximo/com/future.h"

#include <cstdint>
#include <vector>

namespace ximo::ap::statemanager::skeleton {

/// Server side of the service that keeps communication alive for one application. A deriving class implements the
/// methods; threads of the binding call them.
class StateManagementComAliveInterfaceSkeleton : public ara::com::Skeleton {
 public:
    /// Throws `tarq::com::Invalid_argument_exception` for another mode than kEvent.
    StateManagementComAliveInterfaceSkeleton(ara::com::InstanceIdentifier instance,
                                             ara::com::MethodCallProcessingMode mode);

    virtual ximo::com::Future<void> ReleaseComAlive(std::vector<std::uint8_t> const& cab_bits) = 0;
    virtual ximo::com::Future<void> RequestComAlive(std::vector<std::uint8_t> const& cab_bits,
                                                    std::uint8_t ac_number) = 0;
};

}  // namespace ximo::ap::statemanager::skeleton

#endif
