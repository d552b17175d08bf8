#include "tarq/udpnm/interface/network_state_interface_proxy.h"

#include "ara/com/octets.h"
#include "ara/com/typed_reply.h"
#include "network_state_interface.h"

namespace tarq::udpnm::interface::proxy {

namespace {

auto const& result_of(std::int32_t method, void const* sample) {
    auto const& data = static_cast<tarq_udpnm_interface_NetworkStateInterface_Reply const*>(sample)->data;
    ara::com::expect_result(data, method);
    return data;
}

std::vector<std::uint8_t> decode(void const* sample) {
    return ara::com::copy(static_cast<tarq_udpnm_interface_NetworkStateInterface_NetworkState const*>(sample)->value);
}

ximo::com::Future<std::vector<std::uint8_t>> get_value(ara::com::Connection& connection) {
    tarq_udpnm_interface_NetworkStateInterface_Request request{};
    request.data._d = 2;
    return ara::com::call<std::vector<std::uint8_t>>(connection, &request, [](void const* reply) {
        auto const& result = result_of(2, reply)._u.getNetworkState;
        ara::com::expect_result(result, 0);
        return ara::com::copy(result._u.result.value);
    });
}

}  // namespace

NetworkStateInterfaceProxy::NetworkStateInterfaceProxy(HandleType const& handle)
    : Proxy(handle), NetworkState(connection(), k_network_state, decode, [this] { return get_value(*connection()); }) {}

ximo::com::Future<void> NetworkStateInterfaceProxy::RequestNetwork(std::vector<std::uint8_t> const& bits) {
    tarq_udpnm_interface_NetworkStateInterface_Request request{};
    request.data._d = 0;
    request.data._u.requestNetwork.bits = ara::com::view<tarq_udpnm_interface_NetworkStateInterface_Bytes>(bits);
    return ara::com::call<void>(*connection(), &request, [](void const* reply) { result_of(0, reply); });
}

ximo::com::Future<void> NetworkStateInterfaceProxy::ReleaseNetwork(std::vector<std::uint8_t> const& bits) {
    tarq_udpnm_interface_NetworkStateInterface_Request request{};
    request.data._d = 1;
    request.data._u.releaseNetwork.bits = ara::com::view<tarq_udpnm_interface_NetworkStateInterface_Bytes>(bits);
    return ara::com::call<void>(*connection(), &request, [](void const* reply) { result_of(1, reply); });
}

}  // namespace tarq::udpnm::interface::proxy
