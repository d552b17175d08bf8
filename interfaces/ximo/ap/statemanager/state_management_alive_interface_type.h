#ifndef XIMO_AP_STATEMANAGER_STATE_MANAGEMENT_ALIVE_INTERFACE_TYPE_H
#define XIMO_AP_STATEMANAGER_STATE_MANAGEMENT_ALIVE_INTERFACE_TYPE_H

#include "ara/com/service_type.h"

namespace ximo::ap::statemanager {

/// What skeleton and proxy have in common.
extern ara::com::Service_type const k_state_management_alive_interface;

}  // namespace ximo::ap::statemanager

#endif
