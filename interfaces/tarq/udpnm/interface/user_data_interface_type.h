#ifndef TARQ_UDPNM_INTERFACE_USER_DATA_INTERFACE_TYPE_H
#define TARQ_UDPNM_INTERFACE_USER_DATA_INTERFACE_TYPE_H

#include "ara/com/service_type.h"

namespace tarq::udpnm::interface {

/// What skeleton and proxy have in common.
extern ara::com::Service_type const k_user_data_interface;
extern ara::com::Event_type const k_user_data_changed;

}  // namespace tarq::udpnm::interface

#endif
