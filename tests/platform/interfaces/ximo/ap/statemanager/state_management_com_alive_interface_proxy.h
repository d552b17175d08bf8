#ifndef XIMO_AP_STATEMANAGER_STATE_MANAGEMENT_COM_ALIVE_INTERFACE_PROXY_H
#define XIMO_AP_STATEMANAGER_STATE_MANAGEMENT_COM_ALIVE_INTERFACE_PROXY_H

#include "ara/com/proxy.h"
#include "ximo/ap/statemanager/state_management_com_alive_interface_skeleton.h"
#include "ximo/com/future.h"

#include <cstdint>
#include <vector>

namespace ximo::ap::statemanager::proxy {

/// A client of keeping communication alive.
class StateManagementComAliveInterfaceProxy
    : public ara::com::Proxy<skeleton::StateManagementComAliveInterfaceSkeleton> {
 public:
    using Proxy::Proxy;

    ximo::com::Future<void> ReleaseComAlive(std::vector<std::uint8_t> const& cab_bits) const {
        return call(&skeleton::StateManagementComAliveInterfaceSkeleton::ReleaseComAlive, cab_bits);
    }
    ximo::com::Future<void> RequestComAlive(std::vector<std::uint8_t> const& cab_bits, std::uint8_t ac_number) const {
        return call(&skeleton::StateManagementComAliveInterfaceSkeleton::RequestComAlive, cab_bits, ac_number);
    }
};

}  // namespace ximo::ap::statemanager::proxy

#endif
