#include "ximo/ap/statemanager/state_management_alive_interface_skeleton.h"

#include "state_management_alive_interface.h"
#include "ximo/ap/statemanager/state_management_alive_interface_type.h"

#include <utility>

namespace ximo::ap::statemanager::skeleton {

namespace {

void serve(StateManagementAliveInterfaceSkeleton& service, void const* sample, ara::com::Reply_sink const& answer) {
    auto const& request = *static_cast<ximo_ap_statemanager_StateManagementAliveInterface_Request const*>(sample);
    ximo_ap_statemanager_StateManagementAliveInterface_Reply reply{};
    reply.data._d = request.data._d;
    switch (request.data._d) {
        case ximo_ap_statemanager_StateManagementAliveInterface_Method_ReleaseAlive:
            service.ReleaseAlive().get();
            break;
        case ximo_ap_statemanager_StateManagementAliveInterface_Method_RequestAlive:
            service.RequestAlive().get();
            break;
        default:
            throw ara::com::Unknown_operation();
    }
    answer(&reply, nullptr);
}

}  // namespace

StateManagementAliveInterfaceSkeleton::StateManagementAliveInterfaceSkeleton(ara::com::InstanceIdentifier instance,
                                                                             ara::com::MethodCallProcessingMode mode)
    : Skeleton(k_state_management_alive_interface, std::move(instance), mode,
               [this](void const* request, ara::com::Reply_sink const& answer) { serve(*this, request, answer); }) {}

}  // namespace ximo::ap::statemanager::skeleton
