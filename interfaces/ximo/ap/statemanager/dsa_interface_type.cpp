#include "ximo/ap/statemanager/dsa_interface_type.h"

#include "dsa_interface.h"
#include "ximo/ap/statemanager/longest_call.h"

#include <cstddef>

namespace ximo::ap::statemanager {

ara::com::Service_type const k_dsa_interface{
    "ximo::ap::statemanager::DSAInterface",
    {&ximo_ap_statemanager_DSAInterface_Request_desc, sizeof(ximo_ap_statemanager_DSAInterface_Request)},
    {&ximo_ap_statemanager_DSAInterface_Reply_desc, sizeof(ximo_ap_statemanager_DSAInterface_Reply)},
    offsetof(ximo_ap_statemanager_DSAInterface_Reply, data),
    k_longest_call};

}  // namespace ximo::ap::statemanager
