#ifndef STATEMANAGER_SERVICE_HANDLER_INTERFACE_H
#define STATEMANAGER_SERVICE_HANDLER_INTERFACE_H

namespace ximo::ap::statemanager {

/// Network management and the applications, as the driver and the states see them. The queries are cheap, change
/// nothing and may be asked several times in a cycle.
class Service_handler_interface {
 public:
    Service_handler_interface() = default;
    virtual ~Service_handler_interface() = default;
    Service_handler_interface(Service_handler_interface const&) = delete;
    Service_handler_interface& operator=(Service_handler_interface const&) = delete;

    /// Offers the services that the configuration asks for and starts to look for network management.
    virtual bool init() = 0;

    /// Withdraws the offered services.
    virtual void deinit() = 0;

    /// Network management has been found.
    virtual bool nm_interface_available() const = 0;

    /// An application holds communication alive.
    virtual bool apps_keep_com_alive() const = 0;

    /// An application holds the ECU alive.
    virtual bool apps_keep_ecu_alive() const = 0;

    /// An application holds communication or the ECU alive.
    virtual bool is_network_in_use() const = 0;

    /// Network management has reported the network at rest often enough for the ECU to sleep.
    virtual bool ecu_in_sleep_mode() const = 0;

    /// Requests the network with the configured pattern.
    virtual void request_network() = 0;

    /// Releases the configured pattern.
    virtual void release_network() = 0;

    /// Stops everything sent to network management, before a suspend.
    virtual void standby() = 0;

    /// Takes it up again, after a suspend.
    virtual void end_standby() = 0;
};

}  // namespace ximo::ap::statemanager

#endif
