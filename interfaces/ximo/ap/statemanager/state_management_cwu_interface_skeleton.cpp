#include "ximo/ap/statemanager/state_management_cwu_interface_skeleton.h"

#include "state_management_cwu_interface.h"
#include "ximo/ap/statemanager/state_management_cwu_interface_type.h"

#include <utility>

namespace ximo::ap::statemanager::skeleton {

namespace {

void serve(StateManagementCWUInterfaceSkeleton& service, void const* sample, ara::com::Reply_sink const& answer) {
    auto const& request = *static_cast<ximo_ap_statemanager_StateManagementCWUInterface_Request const*>(sample);
    ximo_ap_statemanager_StateManagementCWUInterface_Reply reply{};
    reply.data._d = request.data._d;
    switch (request.data._d) {
        case ximo_ap_statemanager_StateManagementCWUInterface_Method_ReleaseCarWakeUp:
            service.ReleaseCarWakeUp().get();
            break;
        case ximo_ap_statemanager_StateManagementCWUInterface_Method_RequestCarWakeUp: {
            auto const& arguments = request.data._u.requestCarWakeUp;
            service.RequestCarWakeUp(arguments.ac_number).get();
            break;
        }
        default:
            throw ara::com::Unknown_operation();
    }
    answer(&reply, nullptr);
}

}  // namespace

StateManagementCWUInterfaceSkeleton::StateManagementCWUInterfaceSkeleton(ara::com::InstanceIdentifier instance,
                                                                         ara::com::MethodCallProcessingMode mode)
    : Skeleton(k_state_management_cwu_interface, std::move(instance), mode,
               [this](void const* request, ara::com::Reply_sink const& answer) { serve(*this, request, answer); }) {}

}  // namespace ximo::ap::statemanager::skeleton
