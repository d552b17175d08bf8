#include "ximo/ap/statemanager/state_management_cwu_interface_proxy.h"

#include "ara/com/typed_reply.h"
#include "state_management_cwu_interface.h"

namespace ximo::ap::statemanager::proxy {

namespace {

auto const& result_of(std::int32_t method, void const* sample) {
    auto const& data = static_cast<ximo_ap_statemanager_StateManagementCWUInterface_Reply const*>(sample)->data;
    ara::com::expect_result(data, method);
    return data;
}

}  // namespace

ximo::com::Future<void> StateManagementCWUInterfaceProxy::ReleaseCarWakeUp() {
    ximo_ap_statemanager_StateManagementCWUInterface_Request request{};
    request.data._d = 0;
    return ara::com::call<void>(*connection(), &request, [](void const* reply) { result_of(0, reply); });
}

ximo::com::Future<void> StateManagementCWUInterfaceProxy::RequestCarWakeUp(std::uint8_t ac_number) {
    ximo_ap_statemanager_StateManagementCWUInterface_Request request{};
    request.data._d = 1;
    request.data._u.requestCarWakeUp.ac_number = ac_number;
    return ara::com::call<void>(*connection(), &request, [](void const* reply) { result_of(1, reply); });
}

}  // namespace ximo::ap::statemanager::proxy
