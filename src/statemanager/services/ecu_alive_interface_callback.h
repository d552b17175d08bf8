#ifndef STATEMANAGER_SERVICES_ECU_ALIVE_INTERFACE_CALLBACK_H
#define STATEMANAGER_SERVICES_ECU_ALIVE_INTERFACE_CALLBACK_H

#include <string>

namespace ximo::ap::statemanager::services {

/// Whoever wants to know which application has asked to keep the ECU alive, or does so no more. Called on threads of
/// the communication binding, for different applications at the same time, and again when an application repeats
/// itself.
class Ecu_alive_interface_callback {
 public:
    Ecu_alive_interface_callback() = default;
    virtual ~Ecu_alive_interface_callback() = default;
    Ecu_alive_interface_callback(Ecu_alive_interface_callback const&) = delete;
    Ecu_alive_interface_callback& operator=(Ecu_alive_interface_callback const&) = delete;

    virtual void ecu_alive_request(std::string const& instance_id) = 0;
    virtual void ecu_alive_release(std::string const& instance_id) = 0;
};

}  // namespace ximo::ap::statemanager::services

#endif
