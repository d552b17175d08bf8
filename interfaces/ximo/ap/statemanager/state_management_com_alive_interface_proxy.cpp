#include "ximo/ap/statemanager/state_management_com_alive_interface_proxy.h"

#include "ara/com/octets.h"
#include "ara/com/typed_reply.h"
#include "state_management_com_alive_interface.h"

namespace ximo::ap::statemanager::proxy {

namespace {

using Request = ximo_ap_statemanager_StateManagementComAliveInterface_Request;
using Reply = ximo_ap_statemanager_StateManagementComAliveInterface_Reply;

}  // namespace

ximo::com::Future<void> StateManagementComAliveInterfaceProxy::ReleaseComAlive(
    std::vector<std::uint8_t> const& cab_bits) {
    auto request =
        ara::com::request_to<Request>(ximo_ap_statemanager_StateManagementComAliveInterface_Method_ReleaseComAlive);
    request.data._u.releaseComAlive.cab_bits =
        ara::com::view<ximo_ap_statemanager_StateManagementComAliveInterface_Bytes>(cab_bits);
    return ara::com::call<Reply>(*connection(), request);
}

ximo::com::Future<void> StateManagementComAliveInterfaceProxy::RequestComAlive(
    std::vector<std::uint8_t> const& cab_bits, std::uint8_t ac_number) {
    auto request =
        ara::com::request_to<Request>(ximo_ap_statemanager_StateManagementComAliveInterface_Method_RequestComAlive);
    request.data._u.requestComAlive.cab_bits =
        ara::com::view<ximo_ap_statemanager_StateManagementComAliveInterface_Bytes>(cab_bits);
    request.data._u.requestComAlive.ac_number = ac_number;
    return ara::com::call<Reply>(*connection(), request);
}

}  // namespace ximo::ap::statemanager::proxy
