#ifndef XIMO_AP_STATEMANAGER_DSA_INTERFACE_PROXY_H
#define XIMO_AP_STATEMANAGER_DSA_INTERFACE_PROXY_H

#include "ara/com/proxy.h"
#include "ximo/ap/statemanager/dsa_interface_type.h"
#include "ximo/com/future.h"

#include <cstdint>

namespace ximo::ap::statemanager::proxy {

/// Client side of the service that restarts the machine or the microcontroller for diagnostics. The methods fail
/// through their futures only.
class DSAInterfaceProxy : public ara::com::Proxy<k_dsa_interface> {
 public:
    using Proxy::Proxy;

    ximo::com::Future<void> RequestRestart(std::uint8_t RestartType);
};

}  // namespace ximo::ap::statemanager::proxy

#endif
