#include "tarq/udpnm/interface/network_state_interface_type.h"

#include "network_state_interface.h"

#include <cstddef>

namespace tarq::udpnm::interface {

ara::com::Service_type const k_network_state_interface{
    "tarq::udpnm::interface::NetworkStateInterface",
    {&tarq_udpnm_interface_NetworkStateInterface_Request_desc,
     sizeof(tarq_udpnm_interface_NetworkStateInterface_Request)},
    {&tarq_udpnm_interface_NetworkStateInterface_Reply_desc, sizeof(tarq_udpnm_interface_NetworkStateInterface_Reply)},
    offsetof(tarq_udpnm_interface_NetworkStateInterface_Reply, data)};

ara::com::Event_type const k_network_state{"tarq::udpnm::interface::NetworkStateInterface",
                                           "NetworkState",
                                           {&tarq_udpnm_interface_NetworkStateInterface_NetworkState_desc,
                                            sizeof(tarq_udpnm_interface_NetworkStateInterface_NetworkState)},
                                           true};

}  // namespace tarq::udpnm::interface
