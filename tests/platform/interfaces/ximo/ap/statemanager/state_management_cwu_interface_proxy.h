#ifndef XIMO_AP_STATEMANAGER_STATE_MANAGEMENT_CWU_INTERFACE_PROXY_H
#define XIMO_AP_STATEMANAGER_STATE_MANAGEMENT_CWU_INTERFACE_PROXY_H

#include "ara/com/proxy.h"
#include "ximo/ap/statemanager/state_management_cwu_interface_skeleton.h"
#include "ximo/com/future.h"

#include <cstdint>

namespace ximo::ap::statemanager::proxy {

/// A client of waking the car up.
class StateManagementCWUInterfaceProxy : public ara::com::Proxy<skeleton::StateManagementCWUInterfaceSkeleton> {
 public:
    using Proxy::Proxy;

    ximo::com::Future<void> ReleaseCarWakeUp() const {
        return call(&skeleton::StateManagementCWUInterfaceSkeleton::ReleaseCarWakeUp);
    }
    ximo::com::Future<void> RequestCarWakeUp(std::uint8_t ac_number) const {
        return call(&skeleton::StateManagementCWUInterfaceSkeleton::RequestCarWakeUp, ac_number);
    }
};

}  // namespace ximo::ap::statemanager::proxy

#endif
