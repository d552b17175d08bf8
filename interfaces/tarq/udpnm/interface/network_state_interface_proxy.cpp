#include "tarq/udpnm/interface/network_state_interface_proxy.h"

#include "ara/com/octets.h"
#include "ara/com/typed_reply.h"
#include "network_state_interface.h"

namespace tarq::udpnm::interface::proxy {

namespace {

using Request = tarq_udpnm_interface_NetworkStateInterface_Request;
using Reply = tarq_udpnm_interface_NetworkStateInterface_Reply;

std::vector<std::uint8_t> decode(void const* sample) {
    return ara::com::copy(static_cast<tarq_udpnm_interface_NetworkStateInterface_NetworkState const*>(sample)->value);
}

ximo::com::Future<std::vector<std::uint8_t>> get_value(ara::com::Connection& connection) {
    auto const request =
        ara::com::request_to<Request>(tarq_udpnm_interface_NetworkStateInterface_Method_GetNetworkState);
    return ara::com::call<Reply>(connection, request, [](auto const& data) {
        return ara::com::copy(ara::com::result_in(data._u.getNetworkState).value);
    });
}

}  // namespace

NetworkStateInterfaceProxy::NetworkStateInterfaceProxy(HandleType const& handle)
    : Proxy(handle), NetworkState(connection(), k_network_state, decode, [this] { return get_value(*connection()); }) {}

ximo::com::Future<void> NetworkStateInterfaceProxy::RequestNetwork(std::vector<std::uint8_t> const& bits) {
    auto request = ara::com::request_to<Request>(tarq_udpnm_interface_NetworkStateInterface_Method_RequestNetwork);
    request.data._u.requestNetwork.bits = ara::com::view<tarq_udpnm_interface_NetworkStateInterface_Bytes>(bits);
    return ara::com::call<Reply>(*connection(), request);
}

ximo::com::Future<void> NetworkStateInterfaceProxy::ReleaseNetwork(std::vector<std::uint8_t> const& bits) {
    auto request = ara::com::request_to<Request>(tarq_udpnm_interface_NetworkStateInterface_Method_ReleaseNetwork);
    request.data._u.releaseNetwork.bits = ara::com::view<tarq_udpnm_interface_NetworkStateInterface_Bytes>(bits);
    return ara::com::call<Reply>(*connection(), request);
}

}  // namespace tarq::udpnm::interface::proxy
