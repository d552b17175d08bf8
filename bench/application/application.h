#ifndef BENCH_APPLICATION_APPLICATION_H
#define BENCH_APPLICATION_APPLICATION_H

#include "services/found_instance.h"
#include "ximo/ap/statemanager/dsa_interface_proxy.h"
#include "ximo/ap/statemanager/state_management_alive_interface_proxy.h"
#include "ximo/ap/statemanager/state_management_com_alive_interface_proxy.h"
#include "ximo/ap/statemanager/state_management_cwu_interface_proxy.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace bench::application {

/// The ways in which an application keeps the machine awake.
enum class Means { ecu_alive, com_alive, car_wake_up };

/// "ecu_alive", "com_alive" or "cwu".
char const* name(Means means);

/// What a request for communication, or to wake the car, carries.
struct Request {
    std::vector<std::uint8_t> cab_bits;        ///< com_alive only
    std::uint8_t ac_number{0};                 ///< com_alive and car_wake_up
    std::chrono::milliseconds patience{2000};  ///< for the service to be offered
};

/// One application of the machine: it reaches the state manager's services under its own instance name. A call waits
/// for the service to be offered, then up to two seconds for its answer, and throws
/// `tarq::com::Infrastructure_exception` when it fails.
class Application {
 public:
    /// Is told on a thread of the binding whenever a service is offered or withdrawn.
    using On_change = std::function<void(Means means, bool is_offered)>;

    Application(std::string const& instance, On_change const& on_change);

    void request(Means means, Request const& request);
    void release(Means means, Request const& request);

    /// Through the service for diagnostics.
    void restart(std::uint8_t type);

 private:
    template <class Proxy>
    using Found = services::Found_instance<Proxy>;

    Found<ximo::ap::statemanager::proxy::StateManagementAliveInterfaceProxy> ecu_alive_;
    Found<ximo::ap::statemanager::proxy::StateManagementComAliveInterfaceProxy> com_alive_;
    Found<ximo::ap::statemanager::proxy::StateManagementCWUInterfaceProxy> car_wake_up_;
    Found<ximo::ap::statemanager::proxy::DSAInterfaceProxy> restart_;
};

}  // namespace bench::application

#endif
