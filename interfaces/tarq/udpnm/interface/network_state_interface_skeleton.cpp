#include "tarq/udpnm/interface/network_state_interface_skeleton.h"

#include "ara/com/octets.h"
#include "network_state_interface.h"
#include "tarq/udpnm/interface/network_state_interface_type.h"

#include <functional>
#include <utility>

namespace tarq::udpnm::interface::skeleton {

namespace {

void serve(NetworkStateInterfaceSkeleton& service, void const* sample, ara::com::Reply_sink const& answer) {
    auto const& request = *static_cast<tarq_udpnm_interface_NetworkStateInterface_Request const*>(sample);
    tarq_udpnm_interface_NetworkStateInterface_Reply reply{};
    reply.data._d = request.data._d;
    switch (request.data._d) {
        case tarq_udpnm_interface_NetworkStateInterface_Method_RequestNetwork: {
            auto const& arguments = request.data._u.requestNetwork;
            service.RequestNetwork(ara::com::copy(arguments.bits)).get();
            break;
        }
        case tarq_udpnm_interface_NetworkStateInterface_Method_ReleaseNetwork: {
            auto const& arguments = request.data._u.releaseNetwork;
            service.ReleaseNetwork(ara::com::copy(arguments.bits)).get();
            break;
        }
        case tarq_udpnm_interface_NetworkStateInterface_Method_GetNetworkState: {
            auto const value = ara::com::shared(service.NetworkState.get());
            reply.data._u.getNetworkState._u.result.value =
                ara::com::view_of_result<tarq_udpnm_interface_NetworkStateInterface_Bytes>(*value);
            answer(&reply, value);
            return;
        }
        default:
            throw ara::com::Unknown_operation();
    }
    answer(&reply, nullptr);
}

void encode(std::vector<std::uint8_t> const& value, std::function<void(void const*)> const& sink) {
    tarq_udpnm_interface_NetworkStateInterface_NetworkState sample{};
    sample.value = ara::com::view<tarq_udpnm_interface_NetworkStateInterface_Bytes>(value);
    sink(&sample);
}

}  // namespace

NetworkStateInterfaceSkeleton::NetworkStateInterfaceSkeleton(ara::com::InstanceIdentifier instance,
                                                             ara::com::MethodCallProcessingMode mode)
    : Skeleton(k_network_state_interface, std::move(instance), mode,
               [this](void const* request, ara::com::Reply_sink const& answer) { serve(*this, request, answer); }),
      NetworkState(k_network_state, encode) {
    add_part(NetworkState);
}

}  // namespace tarq::udpnm::interface::skeleton
