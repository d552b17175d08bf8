#ifndef XIMO_AP_STATEMANAGER_STATE_MANAGEMENT_COM_ALIVE_INTERFACE_SKELETON_H
#define XIMO_AP_STATEMANAGER_STATE_MANAGEMENT_COM_ALIVE_INTERFACE_SKELETON_H

#include "ara/com/skeleton.h"
#include "ximo/com/future.h"

#include <cstdint>
#include <vector>

namespace ximo::ap::statemanager::skeleton {

/// The server of keeping communication alive.
class StateManagementComAliveInterfaceSkeleton : public ara::com::Skeleton {
 public:
    static constexpr char const* k_interface = "ximo::ap::statemanager::StateManagementComAliveInterface";

    StateManagementComAliveInterfaceSkeleton(ara::com::InstanceIdentifier const& instance,
                                             ara::com::MethodCallProcessingMode mode)
        : Skeleton(k_interface, instance, mode) {}

    virtual ximo::com::Future<void> ReleaseComAlive(std::vector<std::uint8_t> const& cab_bits) = 0;
    virtual ximo::com::Future<void> RequestComAlive(std::vector<std::uint8_t> const& cab_bits,
                                                    std::uint8_t ac_number) = 0;
};

}  // namespace ximo::ap::statemanager::skeleton

#endif
