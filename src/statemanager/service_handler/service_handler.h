#ifndef STATEMANAGER_SERVICE_HANDLER_SERVICE_HANDLER_H
#define STATEMANAGER_SERVICE_HANDLER_SERVICE_HANDLER_H

#include "base/mutex.h"
#include "statemanager/config/state_manager_config.h"
#include "statemanager/nm/nm_data_aggregator.h"
#include "statemanager/service_handler/ecu_state.h"
#include "statemanager/service_handler/nm_interface_abstract.h"
#include "statemanager/service_handler/provided_services.h"
#include "statemanager/service_handler_interface.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace ximo::ap::statemanager {

/// Hub between the applications, the bits that they hold, and network management.
///
/// `init()` offers the restart service and looks for network management; once that is found the applications' services
/// are offered. From then on each call of an application changes what all of them hold together, and the difference
/// goes to network management. `standby()` takes everything back there but an ECU that is kept alive, `end_standby()`
/// gives it again; what applications ask for and give back in between is remembered until then. `deinit()` withdraws
/// the services.
///
/// Applications call on threads of the communication binding, the states on the driver's thread. One mutex serialises
/// what applications ask for, and is held while network management is called; the queries never take it.
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
    bool apps_keep_com_alive() const override { return com_alive_; }
    bool apps_keep_ecu_alive() const override { return provided_.app_keeps_ecu_alive(); }
    bool is_network_in_use() const override { return apps_keep_com_alive() || apps_keep_ecu_alive(); }
    bool ecu_in_sleep_mode() const override { return ecu_state_.in_sleep_mode(); }
    void request_network() override;
    void release_network() override;
    void standby() override;
    void end_standby() override;

    void ecu_alive_request(std::string const& instance_id) override;
    void ecu_alive_release(std::string const& instance_id) override;

 private:
    void register_callbacks();
    void init_network_management();
    bool start_offer_services();
    bool look_up_network_management();
    void network_management_found();
    void network_state_updated(Bit_vector const& state);

    void handle_com_alive_request(std::string const& id, Bit_vector const& cab_bits, std::uint8_t ac_number);
    void handle_com_alive_release(std::string const& id, Bit_vector const& cab_bits);
    void handle_cwu_request(std::string const& id, std::uint8_t ac_number);
    void handle_cwu_release(std::string const& id);

    bool may_send() const REQUIRES(mutex_) { return nm_usage_ && nm_active_; }
    void init_user_data() REQUIRES(mutex_);
    void set_user_data(Bit_vector const& data) REQUIRES(mutex_);
    void request_network(Bit_vector const& bits) REQUIRES(mutex_);
    void release_network(Bit_vector const& bits) REQUIRES(mutex_);
    void release_owed_ecu_alive() REQUIRES(mutex_);

    config::State_manager_config const& configuration_;
    bool const nm_usage_;
    std::unique_ptr<Nm_interface_abstract> network_management_;
    Provided_services provided_;
    Bit_vector default_nm_pattern_;  ///< written by `init()`, before another thread can come
    Ecu_state ecu_state_;
    std::atomic<bool> nm_available_{false};
    std::atomic<bool> com_alive_{false};  ///< the aggregator's answer, for those who don't wait for the mutex

    base::Recursive_mutex mutex_;
    std::unique_ptr<nm::Nm_data_aggregator> aggregator_ GUARDED_BY(mutex_);  ///< null without network management
    Bit_vector requested_cab_pattern_ GUARDED_BY(mutex_);
    Bit_vector user_data_ GUARDED_BY(mutex_);  ///< the last user data sent; its length is that of all that is sent
    bool nm_active_ GUARDED_BY(mutex_){true};
    bool ecu_alive_requested_ GUARDED_BY(mutex_){false};  ///< and not released since, as far as the network knows
};

}  // namespace ximo::ap::statemanager

#endif
