#ifndef TARQ_UDPNM_INTERFACE_USER_DATA_INTERFACE_PROXY_H
#define TARQ_UDPNM_INTERFACE_USER_DATA_INTERFACE_PROXY_H

#include "ara/com/proxy.h"
#include "tarq/udpnm/interface/user_data_interface_skeleton.h"
#include "ximo/com/future.h"

#include <cstdint>
#include <vector>

namespace tarq::udpnm::interface::proxy {

/// A client of the user data of network management messages.
class UserDataInterfaceProxy : public ara::com::Proxy<skeleton::UserDataInterfaceSkeleton> {
 public:
    using Proxy::Proxy;

    ximo::com::Future<interface::GetUserData::Output> GetUserData() const {
        return call(&skeleton::UserDataInterfaceSkeleton::GetUserData);
    }
    ximo::com::Future<void> SetUserData(std::vector<std::uint8_t> const& data) const {
        return call(&skeleton::UserDataInterfaceSkeleton::SetUserData, data);
    }

    ara::com::Proxy_event UserDataChanged{channel("UserDataChanged")};
};

}  // namespace tarq::udpnm::interface::proxy

#endif
