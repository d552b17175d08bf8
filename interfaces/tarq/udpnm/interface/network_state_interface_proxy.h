#ifndef TARQ_UDPNM_INTERFACE_NETWORK_STATE_INTERFACE_PROXY_H
#define TARQ_UDPNM_INTERFACE_NETWORK_STATE_INTERFACE_PROXY_H

#include "ara/com/proxy.h"
#include "ara/com/proxy_field.h"
#include "tarq/udpnm/interface/network_state_interface_type.h"
#include "ximo/com/future.h"

#include <cstdint>
#include <vector>

namespace tarq::udpnm::interface::proxy {

/// Client side of the service that requests and releases the network, and tells who needs it. The methods fail through
/// their futures only.
class NetworkStateInterfaceProxy : public ara::com::Proxy<k_network_state_interface> {
 public:
    explicit NetworkStateInterfaceProxy(HandleType const& handle);

    ximo::com::Future<void> RequestNetwork(std::vector<std::uint8_t> const& bits);
    ximo::com::Future<void> ReleaseNetwork(std::vector<std::uint8_t> const& bits);

    ara::com::Proxy_field<std::vector<std::uint8_t>> NetworkState;
};

}  // namespace tarq::udpnm::interface::proxy

#endif
