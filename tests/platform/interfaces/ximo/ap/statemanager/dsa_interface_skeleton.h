#ifndef XIMO_AP_STATEMANAGER_DSA_INTERFACE_SKELETON_H
#define XIMO_AP_STATEMANAGER_DSA_INTERFACE_SKELETON_H

#include "ara/com/skeleton.h"
#include "ximo/com/future.h"

#include <cstdint>

namespace ximo::ap::statemanager::skeleton {

/// The server of the diagnostic restart.
class DSAInterfaceSkeleton : public ara::com::Skeleton {
 public:
    static constexpr char const* k_interface = "ximo::ap::statemanager::DSAInterface";

    DSAInterfaceSkeleton(ara::com::InstanceIdentifier const& instance, ara::com::MethodCallProcessingMode mode)
        : Skeleton(k_interface, instance, mode) {}

    virtual ximo::com::Future<void> RequestRestart(std::uint8_t RestartType) = 0;
};

}  // namespace ximo::ap::statemanager::skeleton

#endif
