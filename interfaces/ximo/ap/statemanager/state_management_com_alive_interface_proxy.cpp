#include "ximo/ap/statemanager/state_management_com_alive_interface_proxy.h"

#include "ara/com/octets.h"
#include "ara/com/typed_reply.h"
#include "state_management_com_alive_interface.h"

namespace ximo::ap::statemanager::proxy {

namespace {

auto const& result_of(std::int32_t method, void const* sample) {
    auto const& data = static_cast<ximo_ap_statemanager_StateManagementComAliveInterface_Reply const*>(sample)->data;
    ara::com::expect_result(data, method);
    return data;
}

}  // namespace

ximo::com::Future<void> StateManagementComAliveInterfaceProxy::ReleaseComAlive(
    std::vector<std::uint8_t> const& cab_bits) {
    ximo_ap_statemanager_StateManagementComAliveInterface_Request request{};
    request.data._d = 0;
    request.data._u.releaseComAlive.cab_bits =
        ara::com::view<ximo_ap_statemanager_StateManagementComAliveInterface_Bytes>(cab_bits);
    return ara::com::call<void>(*connection(), &request, [](void const* reply) { result_of(0, reply); });
}

ximo::com::Future<void> StateManagementComAliveInterfaceProxy::RequestComAlive(
    std::vector<std::uint8_t> const& cab_bits, std::uint8_t ac_number) {
    ximo_ap_statemanager_StateManagementComAliveInterface_Request request{};
    request.data._d = 1;
    request.data._u.requestComAlive.cab_bits =
        ara::com::view<ximo_ap_statemanager_StateManagementComAliveInterface_Bytes>(cab_bits);
    request.data._u.requestComAlive.ac_number = ac_number;
    return ara::com::call<void>(*connection(), &request, [](void const* reply) { result_of(1, reply); });
}

}  // namespace ximo::ap::statemanager::proxy
