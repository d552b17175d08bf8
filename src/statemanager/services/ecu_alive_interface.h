#ifndef STATEMANAGER_SERVICES_ECU_ALIVE_INTERFACE_H
#define STATEMANAGER_SERVICES_ECU_ALIVE_INTERFACE_H

#include "statemanager/services/ecu_alive_interface_callback.h"
#include "ximo/ap/statemanager/state_management_alive_interface_skeleton.h"

#include <atomic>
#include <string>

namespace ximo::ap::statemanager::services {

/// The service through which one application keeps the ECU alive.
class Ecu_alive_interface : public skeleton::StateManagementAliveInterfaceSkeleton {
 public:
    /// `callback` is not owned, outlives this object, and may be null. Throws `tarq::com::Invalid_argument_exception`
    /// for a string that is no instance.
    Ecu_alive_interface(std::string const& instance_id, Ecu_alive_interface_callback* callback);
    ~Ecu_alive_interface() override;

    // What the application calls. The callback finds the flag already changed.
    ximo::com::Future<void> ReleaseAlive() override;
    ximo::com::Future<void> RequestAlive() override;

    /// Whether the application's last call was a request. Any thread.
    virtual bool app_keeps_ecu_alive() const;

    /// The instance under which the service is offered, and by which its application is known.
    virtual std::string const& get_instance_id() const;

    // The answers: futures that are ready.
    virtual ximo::com::Future<void> promise_request_alive();
    virtual ximo::com::Future<void> promise_release_alive();

 private:
    Ecu_alive_interface_callback& callback_;
    std::atomic<bool> keeps_ecu_alive_{false};
    std::string const instance_id_;
};

}  // namespace ximo::ap::statemanager::services

#endif
