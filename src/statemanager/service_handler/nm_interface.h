#ifndef STATEMANAGER_SERVICE_HANDLER_NM_INTERFACE_H
#define STATEMANAGER_SERVICE_HANDLER_NM_INTERFACE_H

#include "base/mutex.h"
#include "statemanager/service_handler/nm_interface_abstract.h"
#include "statemanager/service_handler/service_search.h"
#include "tarq/udpnm/interface/network_state_interface_proxy.h"
#include "tarq/udpnm/interface/user_data_interface_proxy.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <vector>

namespace ximo::ap::statemanager {

/// Client of the two services of UDP network management: network state and user data.
///
/// Each is looked up on its own, and the first instance found is kept for good: when it goes, calls fail and are
/// logged, and when it comes back they succeed again.
///
/// The service handler sets its function for the network's state, starts the search, and calls once both services are
/// found. Its functions run on threads of the communication binding: the one for both services on the thread of the
/// lookup that ends last, which is stopped after it; the one for the network's state with each new sample. The
/// destructor waits for both.
class Nm_interface : public Nm_interface_abstract {
 public:
    Nm_interface() = default;
    ~Nm_interface() override;

    void release_network(std::vector<std::uint8_t> const& bits) override;
    void request_network(std::vector<std::uint8_t> const& bits) override;
    void set_user_data(std::vector<std::uint8_t> const& data) override;
    void start_find_services(std::function<void()> const& on_services_found) override;
    void set_network_state_updated_func(std::function<void(std::vector<std::uint8_t> const&)> const& func) override;

    // Stop one lookup; nothing happens when it does not run.
    void stop_find_network_state_service();
    void stop_find_user_data_service();

    /// Hands the newest network state on. Throws `std::bad_function_call` when there is nobody to take it.
    void network_state_field_updated();

 private:
    using Network_state_proxy = tarq::udpnm::interface::proxy::NetworkStateInterfaceProxy;
    using User_data_proxy = tarq::udpnm::interface::proxy::UserDataInterfaceProxy;
    using Network_state_func = std::function<void(std::vector<std::uint8_t> const&)>;
    class Announcement;

    void network_state_reported(ara::com::ServiceHandleContainer const& handles, Announcement& announcement);
    void user_data_reported(ara::com::ServiceHandleContainer const& handles, Announcement& announcement);
    void announce_when_complete(Announcement& announcement);
    void replace_network_state_updated_func(Network_state_func func);
    Network_state_func network_state_updated_func() const;

    Service_search<Network_state_proxy> network_state_{"Stopping NetworkState service lookup"};
    Service_search<User_data_proxy> user_data_{"Stopping UserData service lookup"};
    std::atomic<bool> network_state_found_{false};
    std::atomic<bool> user_data_found_{false};
    mutable base::Mutex mutex_;
    Network_state_func network_state_updated_func_ GUARDED_BY(mutex_);
};

}  // namespace ximo::ap::statemanager

#endif
