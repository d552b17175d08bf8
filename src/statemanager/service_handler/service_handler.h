#ifndef STATEMANAGER_SERVICE_HANDLER_SERVICE_HANDLER_H
#define STATEMANAGER_SERVICE_HANDLER_SERVICE_HANDLER_H

#include "statemanager/config/state_manager_config.h"
#include "statemanager/nm/bit_vector.h"
#include "statemanager/service_handler/application_requests.h"
#include "statemanager/service_handler/ecu_state.h"
#include "statemanager/service_handler/nm_interface_abstract.h"
#include "statemanager/service_handler/provided_services.h"
#include "statemanager/service_handler_interface.h"

#include <atomic>
#include <memory>
#include <string>

namespace ximo::ap::statemanager {

/// Hub between the applications, the bits that they hold, and network management.
///
/// `init()` offers the restart service and looks for network management; once that is found the applications' services
/// are offered. From then on each call of an application goes to its requests, `standby()` and `end_standby()` do, too,
/// and each report of the network to the state of the ECU. `deinit()` withdraws the services.
///
/// The states call on the driver's thread, applications and network management on threads of the communication binding;
/// the queries never wait.
class Service_handler : public Service_handler_interface, public services::Ecu_alive_interface_callback {
 public:
    using Com_alive_services = Provided_services::Com_alive_services;
    using Cwu_services = Provided_services::Cwu_services;

    /// The configuration is read until `init()` has returned. Throws `tarq::com::Invalid_argument_exception` when a
    /// configured ECU-alive instance is none, and `std::length_error` for user data or a default pattern of more bytes
    /// than a call of network management carries, if that is used.
    Service_handler(config::State_manager_config const& configuration,
                    std::unique_ptr<Nm_interface_abstract> network_management, Com_alive_services com_alive,
                    Cwu_services cwu);
    ~Service_handler() override;

    bool init() override;
    void deinit() override;
    bool nm_interface_available() const override { return nm_available_; }
    bool apps_keep_com_alive() const override { return requests_.keep_com_alive(); }
    bool apps_keep_ecu_alive() const override { return provided_.app_keeps_ecu_alive(); }
    bool is_network_in_use() const override { return apps_keep_com_alive() || apps_keep_ecu_alive(); }
    bool ecu_in_sleep_mode() const override { return ecu_state_.in_sleep_mode(); }
    void request_network() override;
    void release_network() override;
    void standby() override { requests_.standby(); }
    void end_standby() override { requests_.end_standby(); }

    void ecu_alive_request(std::string const& instance_id) override { requests_.ecu_alive_request(instance_id); }
    void ecu_alive_release(std::string const& instance_id) override { requests_.ecu_alive_release(instance_id); }

 private:
    void register_callbacks();
    void init_network_management();
    bool start_offer_services();
    bool look_up_network_management();
    void network_management_found();
    void network_state_updated(Bit_vector const& state);

    config::State_manager_config const& configuration_;
    bool const nm_usage_;
    std::unique_ptr<Nm_interface_abstract> owned_network_management_;
    Nm_interface_abstract& network_management_;  ///< the same, for those who call while it goes
    Provided_services provided_;
    Application_requests requests_;
    Ecu_state ecu_state_;
    std::atomic<bool> nm_available_{false};
};

}  // namespace ximo::ap::statemanager

#endif
