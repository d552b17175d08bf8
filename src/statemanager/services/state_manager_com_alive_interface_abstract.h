#ifndef STATEMANAGER_SERVICES_STATE_MANAGER_COM_ALIVE_INTERFACE_ABSTRACT_H
#define STATEMANAGER_SERVICES_STATE_MANAGER_COM_ALIVE_INTERFACE_ABSTRACT_H

#include "ximo/com/future.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace ximo::ap::statemanager {

/// The service through which one application keeps communication alive, as the service handler sees it.
///
/// The owner sets both callbacks, then offers the service. The callbacks run on threads of the communication binding; a
/// request that comes while its callback is missing fails for the caller.
class State_manager_com_alive_interface_abstract {
 public:
    State_manager_com_alive_interface_abstract() = default;
    virtual ~State_manager_com_alive_interface_abstract() = default;
    State_manager_com_alive_interface_abstract(State_manager_com_alive_interface_abstract const&) = delete;
    State_manager_com_alive_interface_abstract& operator=(State_manager_com_alive_interface_abstract const&) = delete;

    // What the application calls: the bits that it needs no more; those that it needs, and the number of its AC bit.
    virtual ximo::com::Future<void> ReleaseComAlive(std::vector<std::uint8_t> const& cab_bits) = 0;
    virtual ximo::com::Future<void> RequestComAlive(std::vector<std::uint8_t> const& cab_bits,
                                                    std::uint8_t ac_number) = 0;

    /// The instance under which the service is offered, and by which its application is known.
    virtual std::string const& get_instance_id() const = 0;

    virtual void set_com_alive_request_cb(std::function<void(std::vector<std::uint8_t> const&, std::uint8_t)> cb) = 0;
    virtual void set_com_alive_release_cb(std::function<void(std::vector<std::uint8_t> const&)> cb) = 0;

    // The answers: futures that are ready.
    virtual ximo::com::Future<void> promise_request_com_alive_get_future() = 0;
    virtual ximo::com::Future<void> promise_release_com_alive_get_future() = 0;

    // Offers the service, or takes the offer back and waits for the call that is being served.
    virtual void offer() = 0;
    virtual void stop_offer() = 0;
};

}  // namespace ximo::ap::statemanager

#endif
