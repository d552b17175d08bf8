#include "ximo/ap/statemanager/state_management_cwu_interface_type.h"

#include "state_management_cwu_interface.h"
#include "ximo/ap/statemanager/longest_call.h"

#include <cstddef>

namespace ximo::ap::statemanager {

ara::com::Service_type const k_state_management_cwu_interface{
    "ximo::ap::statemanager::StateManagementCWUInterface",
    {&ximo_ap_statemanager_StateManagementCWUInterface_Request_desc,
     sizeof(ximo_ap_statemanager_StateManagementCWUInterface_Request)},
    {&ximo_ap_statemanager_StateManagementCWUInterface_Reply_desc,
     sizeof(ximo_ap_statemanager_StateManagementCWUInterface_Reply)},
    offsetof(ximo_ap_statemanager_StateManagementCWUInterface_Reply, data),
    k_longest_call};

}  // namespace ximo::ap::statemanager
