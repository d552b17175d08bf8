#ifndef XIMO_AP_STATEMANAGER_STATE_MANAGEMENT_COM_ALIVE_INTERFACE_PROXY_H
#define XIMO_AP_STATEMANAGER_STATE_MANAGEMENT_COM_ALIVE_INTERFACE_PROXY_H

#include "ara/com/proxy.h"
#include "ximo/ap/statemanager/state_management_com_alive_interface_type.h"
#include "ximo/com/future.h"

#include <cstdint>
#include <vector>

namespace ximo::ap::statemanager::proxy {

/// Client side of the service that keeps communication alive for one application. The methods fail through their
/// futures only.
class StateManagementComAliveInterfaceProxy : public ara::com::Proxy<k_state_management_com_alive_interface> {
 public:
    using Proxy::Proxy;

    ximo::com::Future<void> ReleaseComAlive(std::vector<std::uint8_t> const& cab_bits);
    ximo::com::Future<void> RequestComAlive(std::vector<std::uint8_t> const& cab_bits, std::uint8_t ac_number);
};

}  // namespace ximo::ap::statemanager::proxy

#endif
