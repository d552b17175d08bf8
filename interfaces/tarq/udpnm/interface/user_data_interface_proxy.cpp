#include "tarq/udpnm/interface/user_data_interface_proxy.h"

#include "ara/com/octets.h"
#include "ara/com/typed_reply.h"
#include "user_data_interface.h"

namespace tarq::udpnm::interface::proxy {

namespace {

using Request = tarq_udpnm_interface_UserDataInterface_Request;
using Reply = tarq_udpnm_interface_UserDataInterface_Reply;

std::vector<std::uint8_t> decode(void const* sample) {
    return ara::com::copy(static_cast<tarq_udpnm_interface_UserDataInterface_UserDataChanged const*>(sample)->value);
}

}  // namespace

UserDataInterfaceProxy::UserDataInterfaceProxy(HandleType const& handle)
    : Proxy(handle), UserDataChanged(connection(), k_user_data_changed, decode) {}

ximo::com::Future<interface::GetUserData::Output> UserDataInterfaceProxy::GetUserData() {
    auto const request = ara::com::request_to<Request>(tarq_udpnm_interface_UserDataInterface_Method_GetUserData);
    return ara::com::call<Reply>(*connection(), request, [](auto const& data) {
        return interface::GetUserData::Output { ara::com::copy(ara::com::result_in(data._u.getUserData).data) };
    });
}

ximo::com::Future<void> UserDataInterfaceProxy::SetUserData(std::vector<std::uint8_t> const& data) {
    auto request = ara::com::request_to<Request>(tarq_udpnm_interface_UserDataInterface_Method_SetUserData);
    request.data._u.setUserData.data = ara::com::view<tarq_udpnm_interface_UserDataInterface_Bytes>(data);
    return ara::com::call<Reply>(*connection(), request);
}

}  // namespace tarq::udpnm::interface::proxy
