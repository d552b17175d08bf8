#include "ximo/ap/statemanager/dsa_interface_proxy.h"

#include "ara/com/typed_reply.h"
#include "dsa_interface.h"

namespace ximo::ap::statemanager::proxy {

namespace {

using Request = ximo_ap_statemanager_DSAInterface_Request;
using Reply = ximo_ap_statemanager_DSAInterface_Reply;

}  // namespace

ximo::com::Future<void> DSAInterfaceProxy::RequestRestart(std::uint8_t RestartType) {
    auto request = ara::com::request_to<Request>(ximo_ap_statemanager_DSAInterface_Method_RequestRestart);
    request.data._u.requestRestart.RestartType = RestartType;
    return ara::com::call<Reply>(*connection(), request);
}

}  // namespace ximo::ap::statemanager::proxy
