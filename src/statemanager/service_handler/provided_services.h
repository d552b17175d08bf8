#ifndef STATEMANAGER_SERVICE_HANDLER_PROVIDED_SERVICES_H
#define STATEMANAGER_SERVICE_HANDLER_PROVIDED_SERVICES_H

#include "base/mutex.h"
#include "statemanager/services/dsa_interface.h"
#include "statemanager/services/ecu_alive_interface.h"
#include "statemanager/services/state_manager_com_alive_interface_abstract.h"
#include "statemanager/services/state_manager_cwu_interface_abstract.h"

#include <memory>
#include <string>
#include <vector>

namespace ximo::ap::statemanager {

/// All services that the daemon provides: the diagnostic restart, and for each configured application those that keep
/// the ECU alive, keep communication alive, or wake the car up.
///
/// Offers may be made and withdrawn by different threads; the objects themselves stay the same throughout.
class Provided_services {
 public:
    using Com_alive_services = std::vector<std::unique_ptr<State_manager_com_alive_interface_abstract>>;
    using Cwu_services = std::vector<std::unique_ptr<State_manager_cwu_interface_abstract>>;
    using Ecu_alive_services = std::vector<std::unique_ptr<services::Ecu_alive_interface>>;

    /// Takes the other objects over, leaving out those that are null, and creates the restart service and one ECU-alive
    /// service for each instance. Throws `tarq::com::Invalid_argument_exception` for a string that is no instance.
    Provided_services(std::string const& restart_command_path, std::vector<std::string> const& ecu_alive_instances,
                      services::Ecu_alive_interface_callback& callback, Com_alive_services com_alive, Cwu_services cwu);

    // Offer a group. An offer that fails is logged and leaves the others offered; that of the restart service is told
    // as well, by false. Once the application services were withdrawn they are not offered any more.
    bool offer_restart_service();
    void offer_application_services();

    // Withdraw a group, waiting for the calls that are being served.
    void withdraw_restart_service();
    void withdraw_application_services();

    Com_alive_services const& com_alive() const { return com_alive_; }
    Cwu_services const& cwu() const { return cwu_; }

    /// Whether the last call of one of the applications asked to keep the ECU alive. Any thread; never waits.
    bool app_keeps_ecu_alive() const;

 private:
    services::Dsa_interface restart_;
    Ecu_alive_services ecu_alive_;
    Com_alive_services com_alive_;
    Cwu_services cwu_;
    base::Mutex mutex_;
    bool withdrawn_ GUARDED_BY(mutex_){false};
};

}  // namespace ximo::ap::statemanager

#endif
