#ifndef XIMO_AP_STATEMANAGER_STATE_MANAGEMENT_ALIVE_INTERFACE_PROXY_H
#define XIMO_AP_STATEMANAGER_STATE_MANAGEMENT_ALIVE_INTERFACE_PROXY_H

#include "ara/com/proxy.h"
#include "ximo/ap/statemanager/state_management_alive_interface_skeleton.h"
#include "ximo/com/future.h"

namespace ximo::ap::statemanager::proxy {

/// A client of keeping the ECU alive.
class StateManagementAliveInterfaceProxy : public ara::com::Proxy<skeleton::StateManagementAliveInterfaceSkeleton> {
 public:
    using Proxy::Proxy;

    ximo::com::Future<void> ReleaseAlive() const {
        return call(&skeleton::StateManagementAliveInterfaceSkeleton::ReleaseAlive);
    }
    ximo::com::Future<void> RequestAlive() const {
        return call(&skeleton::StateManagementAliveInterfaceSkeleton::RequestAlive);
    }
};

}  // namespace ximo::ap::statemanager::proxy

#endif
