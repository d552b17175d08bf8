#include "tarq/udpnm/interface/user_data_interface_proxy.h"

#include "ara/com/octets.h"
#include "ara/com/typed_reply.h"
#include "user_data_interface.h"

namespace tarq::udpnm::interface::proxy {

namespace {

auto const& result_of(std::int32_t method, void const* sample) {
    auto const& data = static_cast<tarq_udpnm_interface_UserDataInterface_Reply const*>(sample)->data;
    ara::com::expect_result(data, method);
    return data;
}

std::vector<std::uint8_t> decode(void const* sample) {
    return ara::com::copy(static_cast<tarq_udpnm_interface_UserDataInterface_UserDataChanged const*>(sample)->value);
}

}  // namespace

UserDataInterfaceProxy::UserDataInterfaceProxy(HandleType const& handle)
    : Proxy(handle), UserDataChanged(connection(), k_user_data_changed, decode) {}

ximo::com::Future<interface::GetUserData::Output> UserDataInterfaceProxy::GetUserData() {
    tarq_udpnm_interface_UserDataInterface_Request request{};
    request.data._d = 0;
    return ara::com::call<interface::GetUserData::Output>(*connection(), &request, [](void const* reply) {
        auto const& result = result_of(0, reply)._u.getUserData;
        ara::com::expect_result(result, 0);
        return interface::GetUserData::Output { ara::com::copy(result._u.result.data) };
    });
}

ximo::com::Future<void> UserDataInterfaceProxy::SetUserData(std::vector<std::uint8_t> const& data) {
    tarq_udpnm_interface_UserDataInterface_Request request{};
    request.data._d = 1;
    request.data._u.setUserData.data = ara::com::view<tarq_udpnm_interface_UserDataInterface_Bytes>(data);
    return ara::com::call<void>(*connection(), &request, [](void const* reply) { result_of(1, reply); });
}

}  // namespace tarq::udpnm::interface::proxy
