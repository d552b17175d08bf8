#include "tarq/udpnm/interface/user_data_interface_type.h"

#include "user_data_interface.h"

#include <cstddef>

namespace tarq::udpnm::interface {

ara::com::Service_type const k_user_data_interface{
    "tarq::udpnm::interface::UserDataInterface",
    {&tarq_udpnm_interface_UserDataInterface_Request_desc, sizeof(tarq_udpnm_interface_UserDataInterface_Request)},
    {&tarq_udpnm_interface_UserDataInterface_Reply_desc, sizeof(tarq_udpnm_interface_UserDataInterface_Reply)},
    offsetof(tarq_udpnm_interface_UserDataInterface_Reply, data)};

ara::com::Event_type const k_user_data_changed{"tarq::udpnm::interface::UserDataInterface",
                                               "UserDataChanged",
                                               {&tarq_udpnm_interface_UserDataInterface_UserDataChanged_desc,
                                                sizeof(tarq_udpnm_interface_UserDataInterface_UserDataChanged)},
                                               false};

}  // namespace tarq::udpnm::interface
