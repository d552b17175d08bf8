#include "ximo/ap/statemanager/state_management_alive_interface_proxy.h"

#include "ara/com/typed_reply.h"
#include "state_management_alive_interface.h"

namespace ximo::ap::statemanager::proxy {

namespace {

using Request = ximo_ap_statemanager_StateManagementAliveInterface_Request;
using Reply = ximo_ap_statemanager_StateManagementAliveInterface_Reply;

}  // namespace

ximo::com::Future<void> StateManagementAliveInterfaceProxy::ReleaseAlive() {
    auto const request =
        ara::com::request_to<Request>(ximo_ap_statemanager_StateManagementAliveInterface_Method_ReleaseAlive);
    return ara::com::call<Reply>(*connection(), request);
}

ximo::com::Future<void> StateManagementAliveInterfaceProxy::RequestAlive() {
    auto const request =
        ara::com::request_to<Request>(ximo_ap_statemanager_StateManagementAliveInterface_Method_RequestAlive);
    return ara::com::call<Reply>(*connection(), request);
}

}  // namespace ximo::ap::statemanager::proxy
