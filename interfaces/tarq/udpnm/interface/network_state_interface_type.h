#ifndef TARQ_UDPNM_INTERFACE_NETWORK_STATE_INTERFACE_TYPE_H
#define TARQ_UDPNM_INTERFACE_NETWORK_STATE_INTERFACE_TYPE_H

#include "ara/com/service_type.h"

namespace tarq::udpnm::interface {

/// What skeleton and proxy have in common.
extern ara::com::Service_type const k_network_state_interface;
extern ara::com::Event_type const k_network_state;

}  // namespace tarq::udpnm::interface

#endif
