#ifndef TARQ_UDPNM_INTERFACE_NETWORK_STATE_INTERFACE_PROXY_H
#define TARQ_UDPNM_INTERFACE_NETWORK_STATE_INTERFACE_PROXY_H

#include "ara/com/proxy.h"
#include "tarq/udpnm/interface/network_state_interface_skeleton.h"
#include "ximo/com/future.h"

#include <cstdint>
#include <vector>

namespace tarq::udpnm::interface::proxy {

/// A client of requesting the network.
class NetworkStateInterfaceProxy : public ara::com::Proxy<skeleton::NetworkStateInterfaceSkeleton> {
 public:
    using Proxy::Proxy;

    ximo::com::Future<void> RequestNetwork(std::vector<std::uint8_t> const& bits) const {
        return call(&skeleton::NetworkStateInterfaceSkeleton::RequestNetwork, bits);
    }
    ximo::com::Future<void> ReleaseNetwork(std::vector<std::uint8_t> const& bits) const {
        return call(&skeleton::NetworkStateInterfaceSkeleton::ReleaseNetwork, bits);
    }

    ara::com::Proxy_field NetworkState{channel("NetworkState")};
};

}  // namespace tarq::udpnm::interface::proxy

#endif
