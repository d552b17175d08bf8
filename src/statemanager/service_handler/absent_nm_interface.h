#ifndef STATEMANAGER_SERVICE_HANDLER_ABSENT_NM_INTERFACE_H
#define STATEMANAGER_SERVICE_HANDLER_ABSENT_NM_INTERFACE_H

#include "statemanager/service_handler/nm_interface_abstract.h"

#include <memory>

namespace ximo::ap::statemanager {

/// Stands in for network management where none was given: it is never found.
class Absent_nm_interface : public Nm_interface_abstract {
 public:
    void release_network(std::vector<std::uint8_t> const& /*bits*/) override {}
    void request_network(std::vector<std::uint8_t> const& /*bits*/) override {}
    void set_user_data(std::vector<std::uint8_t> const& /*data*/) override {}
    void start_find_services(std::function<void()> const& /*on_services_found*/) override {}
    void set_network_state_updated_func(
        std::function<void(std::vector<std::uint8_t> const&)> const& /*func*/) override {}
};

inline std::unique_ptr<Nm_interface_abstract> or_absent(std::unique_ptr<Nm_interface_abstract> network_management) {
    if (!network_management) {
        network_management = std::make_unique<Absent_nm_interface>();
    }
    return network_management;
}

}  // namespace ximo::ap::statemanager

#endif
