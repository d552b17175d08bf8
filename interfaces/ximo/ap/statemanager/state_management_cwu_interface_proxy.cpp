#include "ximo/ap/statemanager/state_management_cwu_interface_proxy.h"

#include "ara/com/typed_reply.h"
#include "state_management_cwu_interface.h"

namespace ximo::ap::statemanager::proxy {

namespace {

using Request = ximo_ap_statemanager_StateManagementCWUInterface_Request;
using Reply = ximo_ap_statemanager_StateManagementCWUInterface_Reply;

}  // namespace

ximo::com::Future<void> StateManagementCWUInterfaceProxy::ReleaseCarWakeUp() {
    auto const request =
        ara::com::request_to<Request>(ximo_ap_statemanager_StateManagementCWUInterface_Method_ReleaseCarWakeUp);
    return ara::com::call<Reply>(*connection(), request);
}

ximo::com::Future<void> StateManagementCWUInterfaceProxy::RequestCarWakeUp(std::uint8_t ac_number) {
    auto request =
        ara::com::request_to<Request>(ximo_ap_statemanager_StateManagementCWUInterface_Method_RequestCarWakeUp);
    request.data._u.requestCarWakeUp.ac_number = ac_number;
    return ara::com::call<Reply>(*connection(), request);
}

}  // namespace ximo::ap::statemanager::proxy
