#ifndef TARQ_UDPNM_INTERFACE_USER_DATA_INTERFACE_PROXY_H
#define TARQ_UDPNM_INTERFACE_USER_DATA_INTERFACE_PROXY_H

#include "ara/com/proxy.h"
#include "ara/com/proxy_event.h"
#include "tarq/udpnm/interface/user_data_interface_type.h"
#include "tarq/udpnm/interface/user_data_interface_types.h"
#include "ximo/com/future.h"

#include <cstdint>
#include <vector>

namespace tarq::udpnm::interface::proxy {

/// Client side of the service that holds the user data of network management messages. The methods fail through their
/// futures only.
class UserDataInterfaceProxy : public ara::com::Proxy<k_user_data_interface> {
 public:
    explicit UserDataInterfaceProxy(HandleType const& handle);

    ximo::com::Future<interface::GetUserData::Output> GetUserData();
    ximo::com::Future<void> SetUserData(std::vector<std::uint8_t> const& data);

    ara::com::Proxy_event<std::vector<std::uint8_t>> UserDataChanged;
};

}  // namespace tarq::udpnm::interface::proxy

#endif
