#ifndef XIMO_AP_STATEMANAGER_STATE_MANAGEMENT_ALIVE_INTERFACE_PROXY_H
#define XIMO_AP_STATEMANAGER_STATE_MANAGEMENT_ALIVE_INTERFACE_PROXY_H

#include "ara/com/proxy.h"
#include "ximo/ap/statemanager/state_management_alive_interface_type.h"
#include "ximo/com/future.h"

namespace ximo::ap::statemanager::proxy {

/// Client side of the service that keeps the ECU awake for one application. The methods fail through their futures
/// only.
class StateManagementAliveInterfaceProxy : public ara::com::Proxy<k_state_management_alive_interface> {
 public:
    using Proxy::Proxy;

    ximo::com::Future<void> ReleaseAlive();
    ximo::com::Future<void> RequestAlive();
};

}  // namespace ximo::ap::statemanager::proxy

#endif
