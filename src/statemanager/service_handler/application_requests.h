#ifndef STATEMANAGER_SERVICE_HANDLER_APPLICATION_REQUESTS_H
#define STATEMANAGER_SERVICE_HANDLER_APPLICATION_REQUESTS_H

#include "base/mutex.h"
#include "statemanager/config/nm_user_data_config.h"
#include "statemanager/nm/bit_vector.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

namespace ximo::ap::statemanager {

namespace nm {
class Nm_data_aggregator;
}
class Nm_interface_abstract;
class Provided_services;

/// What applications ask of the network, and what of it network management is told.
///
/// Words: the default pattern is what the states hold the network by; the CAB pattern is what applications with COM
/// alive hold together; the ECU-alive pattern is one bit, held while any application keeps the ECU alive; the user data
/// tells the rest of the vehicle who holds what. Each call of an application changes the aggregation, and the
/// difference to what is requested goes to network management. From `standby()`, which gives everything back but an ECU
/// that is kept alive, until `end_standby()`, which requests it again, changes are remembered and not sent.
///
/// Applications call on threads of the communication binding, the states on the driver's thread. One mutex serialises
/// all but the default pattern's requests, and is held while network management is called; `keep_com_alive` never takes
/// it.
class Application_requests {
 public:
    /// Network management and the services must outlive this object. Without `nm_usage` network management is never
    /// called, and nothing is aggregated.
    Application_requests(bool nm_usage, Nm_interface_abstract& network_management, Provided_services const& provided);
    ~Application_requests();

    /// Only where network management is used; before another thread can call.
    void init(config::Nm_user_data_config const& layout, Bit_vector default_pattern);

    /// Tells network management the initial user data, and that nothing of an earlier life is requested any more.
    void network_management_found();

    // The states hold the network and let it go.
    void request_default_pattern();
    void release_default_pattern();

    void standby();
    void end_standby();

    // An application calls.
    void handle_com_alive_request(std::string const& id, Bit_vector const& cab_bits, std::uint8_t ac_number);
    void handle_com_alive_release(std::string const& id, Bit_vector const& cab_bits);
    void handle_cwu_request(std::string const& id, std::uint8_t ac_number);
    void handle_cwu_release(std::string const& id);
    void ecu_alive_request(std::string const& instance_id);
    void ecu_alive_release(std::string const& instance_id);

    /// Whether an application keeps communication alive. Any thread; never waits.
    bool keep_com_alive() const { return com_alive_; }

 private:
    bool may_send() const REQUIRES(mutex_) { return nm_usage_ && nm_active_; }
    void init_user_data() REQUIRES(mutex_);
    void set_user_data(Bit_vector const& data) REQUIRES(mutex_);
    void request_network(Bit_vector const& bits) REQUIRES(mutex_);
    void release_network(Bit_vector const& bits) REQUIRES(mutex_);
    void release_owed_ecu_alive() REQUIRES(mutex_);

    bool const nm_usage_;
    Nm_interface_abstract& network_management_;
    Provided_services const& provided_;
    Bit_vector default_nm_pattern_;       ///< written by `init()`, before another thread can come
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
