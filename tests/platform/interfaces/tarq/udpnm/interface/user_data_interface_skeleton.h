#ifndef TARQ_UDPNM_INTERFACE_USER_DATA_INTERFACE_SKELETON_H
#define TARQ_UDPNM_INTERFACE_USER_DATA_INTERFACE_SKELETON_H

#include "ara/com/skeleton.h"
#include "tarq/udpnm/interface/user_data_interface_types.h"
#include "ximo/com/future.h"

#include <cstdint>
#include <vector>

namespace tarq::udpnm::interface::skeleton {

/// The server of the user data of network management messages.
class UserDataInterfaceSkeleton : public ara::com::Skeleton {
 public:
    static constexpr char const* k_interface = "tarq::udpnm::interface::UserDataInterface";

    UserDataInterfaceSkeleton(ara::com::InstanceIdentifier const& instance, ara::com::MethodCallProcessingMode mode)
        : Skeleton(k_interface, instance, mode) {}

    virtual ximo::com::Future<interface::GetUserData::Output> GetUserData() = 0;
    virtual ximo::com::Future<void> SetUserData(std::vector<std::uint8_t> const& data) = 0;

    ara::com::Skeleton_event UserDataChanged{*this, "UserDataChanged"};
};

}  // namespace tarq::udpnm::interface::skeleton

#endif
