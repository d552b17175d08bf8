#ifndef XIMO_AP_STATEMANAGER_DSA_INTERFACE_PROXY_H
#define XIMO_AP_STATEMANAGER_DSA_INTERFACE_PROXY_H

#include "ara/com/proxy.h"
#include "ximo/ap/statemanager/dsa_interface_skeleton.h"
#include "ximo/com/future.h"

#include <cstdint>

namespace ximo::ap::statemanager::proxy {

/// A client of the diagnostic restart.
class DSAInterfaceProxy : public ara::com::Proxy<skeleton::DSAInterfaceSkeleton> {
 public:
    using Proxy::Proxy;

    ximo::com::Future<void> RequestRestart(std::uint8_t RestartType) const {
        return call(&skeleton::DSAInterfaceSkeleton::RequestRestart, RestartType);
    }
};

}  // namespace ximo::ap::statemanager::proxy

#endif
