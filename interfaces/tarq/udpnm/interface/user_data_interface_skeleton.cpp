#include "tarq/udpnm/interface/user_data_interface_skeleton.h"

#include "ara/com/octets.h"
#include "tarq/udpnm/interface/user_data_interface_type.h"
#include "user_data_interface.h"

#include <functional>
#include <utility>

namespace tarq::udpnm::interface::skeleton {

namespace {

void serve(UserDataInterfaceSkeleton& service, void const* sample, ara::com::Reply_sink const& answer) {
    auto const& request = *static_cast<tarq_udpnm_interface_UserDataInterface_Request const*>(sample);
    tarq_udpnm_interface_UserDataInterface_Reply reply{};
    reply.data._d = request.data._d;
    switch (request.data._d) {
        case tarq_udpnm_interface_UserDataInterface_Method_GetUserData: {
            auto const data = ara::com::shared(service.GetUserData().get().data);
            reply.data._u.getUserData._u.result.data =
                ara::com::view_of_result<tarq_udpnm_interface_UserDataInterface_Bytes>(*data);
            answer(&reply, data);
            return;
        }
        case tarq_udpnm_interface_UserDataInterface_Method_SetUserData: {
            auto const& arguments = request.data._u.setUserData;
            service.SetUserData(ara::com::copy(arguments.data)).get();
            break;
        }
        default:
            throw ara::com::Unknown_operation();
    }
    answer(&reply, nullptr);
}

void encode(std::vector<std::uint8_t> const& value, std::function<void(void const*)> const& sink) {
    tarq_udpnm_interface_UserDataInterface_UserDataChanged sample{};
    sample.value = ara::com::view<tarq_udpnm_interface_UserDataInterface_Bytes>(value);
    sink(&sample);
}

}  // namespace

UserDataInterfaceSkeleton::UserDataInterfaceSkeleton(ara::com::InstanceIdentifier instance,
                                                     ara::com::MethodCallProcessingMode mode)
    : Skeleton(k_user_data_interface, std::move(instance), mode,
               [this](void const* request, ara::com::Reply_sink const& answer) { serve(*this, request, answer); }),
      UserDataChanged(k_user_data_changed, encode) {
    add_part(UserDataChanged);
}

}  // namespace tarq::udpnm::interface::skeleton
