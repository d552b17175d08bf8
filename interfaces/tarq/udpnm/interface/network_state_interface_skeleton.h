#ifndef TARQ_UDPNM_INTERFACE_NETWORK_STATE_INTERFACE_SKELETON_H
#define TARQ_UDPNM_INTERFACE_NETWORK_STATE_INTERFACE_SKELETON_H

#include "ara/com/instance.h"
#include "ara/com/skeleton.h"
#include "ara/com/skeleton_event.h"
#include "ximo/com/future.h"

#include <cstdint>
#include <vector>

namespace tarq::udpnm::interface::skeleton {

/// Server side of the service that requests and releases the network, and tells who needs it. A deriving class
/// implements the methods; threads of the binding call them.
class NetworkStateInterfaceSkeleton : public ara::com::Skeleton {
 public:
    /// Throws `tarq::com::Invalid_argument_exception` for another mode than kEvent.
    NetworkStateInterfaceSkeleton(ara::com::InstanceIdentifier instance, ara::com::MethodCallProcessingMode mode);

    virtual ximo::com::Future<void> RequestNetwork(std::vector<std::uint8_t> const& bits) = 0;
    virtual ximo::com::Future<void> ReleaseNetwork(std::vector<std::uint8_t> const& bits) = 0;

    ara::com::Skeleton_field<std::vector<std::uint8_t>> NetworkState;
};

}  // namespace tarq::udpnm::interface::skeleton

#endif
