#ifndef TARQ_UDPNM_INTERFACE_USER_DATA_INTERFACE_SKELETON_H
#define TARQ_UDPNM_INTERFACE_USER_DATA_INTERFACE_SKELETON_H

#include "ara/com/instance.h"
#include "ara/com/skeleton.h"
#include "ara/com/skeleton_event.h"
#include "tarq/udpnm/interface/user_data_interface_types.h"
#include "ximo/com/future.h"

#include <cstdint>
#include <vector>

namespace tarq::udpnm::interface::skeleton {

/// Server side of the service that holds the user data of network management messages. A deriving class implements the
/// methods; threads of the binding call them.
class UserDataInterfaceSkeleton : public ara::com::Skeleton {
 public:
    /// Throws `tarq::com::Invalid_argument_exception` for another mode than kEvent.
    UserDataInterfaceSkeleton(ara::com::InstanceIdentifier instance, ara::com::MethodCallProcessingMode mode);

    virtual ximo::com::Future<interface::GetUserData::Output> GetUserData() = 0;
    virtual ximo::com::Future<void> SetUserData(std::vector<std::uint8_t> const& data) = 0;

    ara::com::Skeleton_event<std::vector<std::uint8_t>> UserDataChanged;
};

}  // namespace tarq::udpnm::interface::skeleton

#endif
