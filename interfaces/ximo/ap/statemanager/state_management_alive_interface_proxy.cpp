#include "ximo/ap/statemanager/state_management_alive_interface_proxy.h"

#include "ara/com/typed_reply.h"
#include "state_management_alive_interface.h"

namespace ximo::ap::statemanager::proxy {

namespace {

auto const& result_of(std::int32_t method, void const* sample) {
    auto const& data = static_cast<ximo_ap_statemanager_StateManagementAliveInterface_Reply const*>(sample)->data;
    ara::com::expect_result(data, method);
    return data;
}

}  // namespace

ximo::com::Future<void> StateManagementAliveInterfaceProxy::ReleaseAlive() {
    ximo_ap_statemanager_StateManagementAliveInterface_Request request{};
    request.data._d = 0;
    return ara::com::call<void>(*connection(), &request, [](void const* reply) { result_of(0, reply); });
}

ximo::com::Future<void> StateManagementAliveInterfaceProxy::RequestAlive() {
    ximo_ap_statemanager_StateManagementAliveInterface_Request request{};
    request.data._d = 1;
    return ara::com::call<void>(*connection(), &request, [](void const* reply) { result_of(1, reply); });
}

}  // namespace ximo::ap::statemanager::proxy
