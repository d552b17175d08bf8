#include "ximo/ap/statemanager/dsa_interface_proxy.h"

#include "ara/com/typed_reply.h"
#include "dsa_interface.h"

namespace ximo::ap::statemanager::proxy {

namespace {

auto const& result_of(std::int32_t method, void const* sample) {
    auto const& data = static_cast<ximo_ap_statemanager_DSAInterface_Reply const*>(sample)->data;
    ara::com::expect_result(data, method);
    return data;
}

}  // namespace

ximo::com::Future<void> DSAInterfaceProxy::RequestRestart(std::uint8_t RestartType) {
    ximo_ap_statemanager_DSAInterface_Request request{};
    request.data._d = 0;
    request.data._u.requestRestart.RestartType = RestartType;
    return ara::com::call<void>(*connection(), &request, [](void const* reply) { result_of(0, reply); });
}

}  // namespace ximo::ap::statemanager::proxy
