#ifndef XIMO_AP_STATEMANAGER_STATE_MANAGEMENT_CWU_INTERFACE_PROXY_H
#define XIMO_AP_STATEMANAGER_STATE_MANAGEMENT_CWU_INTERFACE_PROXY_H

#include "ara/com/proxy.h"
#include "ximo/ap/statemanager/state_management_cwu_interface_type.h"
#include "ximo/com/future.h"

#include <cstdint>

namespace ximo::ap::statemanager::proxy {

/// Client side of the service that wakes the whole vehicle for one application. The methods fail through their futures
/// only.
class StateManagementCWUInterfaceProxy : public ara::com::Proxy<k_state_management_cwu_interface> {
 public:
    using Proxy::Proxy;

    ximo::com::Future<void> ReleaseCarWakeUp();
    ximo::com::Future<void> RequestCarWakeUp(std::uint8_t ac_number);
};

}  // namespace ximo::ap::statemanager::proxy

#endif
