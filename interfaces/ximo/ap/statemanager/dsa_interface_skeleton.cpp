#include "ximo/ap/statemanager/dsa_interface_skeleton.h"

#include "dsa_interface.h"
#include "ximo/ap/statemanager/dsa_interface_type.h"

#include <utility>

namespace ximo::ap::statemanager::skeleton {

namespace {

void serve(DSAInterfaceSkeleton& service, void const* sample, ara::com::Reply_sink const& answer) {
    auto const& request = *static_cast<ximo_ap_statemanager_DSAInterface_Request const*>(sample);
    ximo_ap_statemanager_DSAInterface_Reply reply{};
    reply.data._d = request.data._d;
    switch (request.data._d) {
        case ximo_ap_statemanager_DSAInterface_Method_RequestRestart: {
            auto const& arguments = request.data._u.requestRestart;
            service.RequestRestart(arguments.RestartType).get();
            break;
        }
        default:
            throw ara::com::Unknown_operation();
    }
    answer(&reply, nullptr);
}

}  // namespace

DSAInterfaceSkeleton::DSAInterfaceSkeleton(ara::com::InstanceIdentifier instance,
                                           ara::com::MethodCallProcessingMode mode)
    : Skeleton(k_dsa_interface, std::move(instance), mode,
               [this](void const* request, ara::com::Reply_sink const& answer) { serve(*this, request, answer); }) {}

}  // namespace ximo::ap::statemanager::skeleton
