#include "ximo/ap/statemanager/state_management_com_alive_interface_skeleton.h"

#include "ara/com/octets.h"
#include "state_management_com_alive_interface.h"
#include "ximo/ap/statemanager/state_management_com_alive_interface_type.h"

#include <utility>

namespace ximo::ap::statemanager::skeleton {

namespace {

void serve(StateManagementComAliveInterfaceSkeleton& service, void const* sample, ara::com::Reply_sink const& answer) {
    auto const& request = *static_cast<ximo_ap_statemanager_StateManagementComAliveInterface_Request const*>(sample);
    ximo_ap_statemanager_StateManagementComAliveInterface_Reply reply{};
    reply.data._d = request.data._d;
    switch (request.data._d) {
        case ximo_ap_statemanager_StateManagementComAliveInterface_Method_ReleaseComAlive: {
            auto const& arguments = request.data._u.releaseComAlive;
            service.ReleaseComAlive(ara::com::copy(arguments.cab_bits)).get();
            break;
        }
        case ximo_ap_statemanager_StateManagementComAliveInterface_Method_RequestComAlive: {
            auto const& arguments = request.data._u.requestComAlive;
            service.RequestComAlive(ara::com::copy(arguments.cab_bits), arguments.ac_number).get();
            break;
        }
        default:
            throw ara::com::Unknown_operation();
    }
    answer(&reply, nullptr);
}

}  // namespace

StateManagementComAliveInterfaceSkeleton::StateManagementComAliveInterfaceSkeleton(
    ara::com::InstanceIdentifier instance, ara::com::MethodCallProcessingMode mode)
    : Skeleton(k_state_management_com_alive_interface, std::move(instance), mode,
               [this](void const* request, ara::com::Reply_sink const& answer) { serve(*this, request, answer); }) {}

}  // namespace ximo::ap::statemanager::skeleton
