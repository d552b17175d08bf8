#ifndef STATEMANAGER_SERVICES_STATE_MANAGER_CWU_INTERFACE_ABSTRACT_H
#define STATEMANAGER_SERVICES_STATE_MANAGER_CWU_INTERFACE_ABSTRACT_H

#include "ximo/com/future.h"

#include <cstdint>
#include <functional>
#include <string>

namespace ximo::ap::statemanager {

/// The service through which one application wakes the car up, as the service handler sees it.
///
/// The owner sets both callbacks, then offers the service. The callbacks run on threads of the communication binding; a
/// request that comes while its callback is missing fails for the caller.
class State_manager_cwu_interface_abstract {
 public:
    State_manager_cwu_interface_abstract() = default;
    virtual ~State_manager_cwu_interface_abstract() = default;
    State_manager_cwu_interface_abstract(State_manager_cwu_interface_abstract const&) = delete;
    State_manager_cwu_interface_abstract& operator=(State_manager_cwu_interface_abstract const&) = delete;

    // What the application calls; the number is that of its AC bit.
    virtual ximo::com::Future<void> ReleaseCarWakeUp() = 0;
    virtual ximo::com::Future<void> RequestCarWakeUp(std::uint8_t ac_number) = 0;

    /// The instance under which the service is offered, and by which its application is known.
    virtual std::string const& get_instance_id() const = 0;

    virtual void set_cwu_request_cb(std::function<void(std::uint8_t)> cb) = 0;
    virtual void set_cwu_release_cb(std::function<void()> cb) = 0;

    // The answers: futures that are ready.
    virtual ximo::com::Future<void> promise_request_cwu_get_future() = 0;
    virtual ximo::com::Future<void> promise_release_cwu_get_future() = 0;

    // Offers the service, or takes the offer back and waits for the call that is being served.
    virtual void offer() = 0;
    virtual void stop_offer() = 0;
};

}  // namespace ximo::ap::statemanager

#endif
