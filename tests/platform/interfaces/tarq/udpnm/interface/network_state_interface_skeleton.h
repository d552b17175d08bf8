#ifndef TARQ_UDPNM_INTERFACE_NETWORK_STATE_INTERFACE_SKELETON_H
#define TARQ_UDPNM_INTERFACE_NETWORK_STATE_INTERFACE_SKELETON_H

#include "ara/com/skeleton.h"
#include "ximo/com/future.h"

#include <cstdint>
#include <vector>

namespace tarq::udpnm::interface::skeleton {

/// The server of requesting the network.
class NetworkStateInterfaceSkeleton : public ara::com::Skeleton {
 public:
    static constexpr char const* k_interface = "tarq::udpnm::interface::NetworkStateInterface";

    NetworkStateInterfaceSkeleton(ara::com::InstanceIdentifier const& instance, ara::com::MethodCallProcessingMode mode)
        : Skeleton(k_interface, instance, mode) {}

    virtual ximo::com::Future<void> RequestNetwork(std::vector<std::uint8_t> const& bits) = 0;
    virtual ximo::com::Future<void> ReleaseNetwork(std::vector<std::uint8_t> const& bits) = 0;

    ara::com::Skeleton_field NetworkState{*this, "NetworkState"};
};

}  // namespace tarq::udpnm::interface::skeleton

#endif
