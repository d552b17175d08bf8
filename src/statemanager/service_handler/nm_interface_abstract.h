#ifndef STATEMANAGER_SERVICE_HANDLER_NM_INTERFACE_ABSTRACT_H
#define STATEMANAGER_SERVICE_HANDLER_NM_INTERFACE_ABSTRACT_H

#include <cstdint>
#include <functional>
#include <vector>

namespace ximo::ap::statemanager {

/// UDP network management as the service handler sees it: bit patterns of the network to hold or to give back, and the
/// user data that goes out with every NM message.
///
/// Set the callback, then start the search once. Until the services are found, requests are dropped without a word. A
/// request waits for the answer; one that fails is logged and lost.
class Nm_interface_abstract {
 public:
    Nm_interface_abstract() = default;
    virtual ~Nm_interface_abstract() = default;
    Nm_interface_abstract(Nm_interface_abstract const&) = delete;
    Nm_interface_abstract& operator=(Nm_interface_abstract const&) = delete;

    virtual void release_network(std::vector<std::uint8_t> const& bits) = 0;
    virtual void request_network(std::vector<std::uint8_t> const& bits) = 0;
    virtual void set_user_data(std::vector<std::uint8_t> const& data) = 0;

    /// Starts to look for network management and returns at once. `on_services_found` is called once, on another
    /// thread.
    virtual void start_find_services(std::function<void()> const& on_services_found) = 0;

    /// `func` is called with each new state of the network, on another thread: a bit vector in which any bit means that
    /// the network is in use.
    virtual void set_network_state_updated_func(std::function<void(std::vector<std::uint8_t> const&)> const& func) = 0;
};

}  // namespace ximo::ap::statemanager

#endif
