#include "ximo/ap/statemanager/state_management_com_alive_interface_type.h"

#include "state_management_com_alive_interface.h"
#include "ximo/ap/statemanager/longest_call.h"

#include <cstddef>

namespace ximo::ap::statemanager {

ara::com::Service_type const k_state_management_com_alive_interface{
    "ximo::ap::statemanager::StateManagementComAliveInterface",
    {&ximo_ap_statemanager_StateManagementComAliveInterface_Request_desc,
     sizeof(ximo_ap_statemanager_StateManagementComAliveInterface_Request)},
    {&ximo_ap_statemanager_StateManagementComAliveInterface_Reply_desc,
     sizeof(ximo_ap_statemanager_StateManagementComAliveInterface_Reply)},
    offsetof(ximo_ap_statemanager_StateManagementComAliveInterface_Reply, data),
    k_longest_call};

}  // namespace ximo::ap::statemanager
