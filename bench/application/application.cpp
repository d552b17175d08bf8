#include "bench/application/application.h"

#include "tarq/com/exception.h"

namespace bench::application {

namespace {

/// The way to an instance that is offered. An offer that is on its way is awaited.
template <class Proxy>
std::shared_ptr<Proxy> way_to(services::Found_instance<Proxy>& instance, std::chrono::milliseconds patience) {
    auto proxy = instance.await(patience);
    if (!proxy) {
        throw tarq::com::Service_not_available_exception();
    }
    return proxy;
}

}  // namespace

char const* name(Means means) {
    switch (means) {
        case Means::ecu_alive:
            return "ecu_alive";
        case Means::com_alive:
            return "com_alive";
        case Means::car_wake_up:
            break;
    }
    return "cwu";
}

Application::Application(std::string const& instance, On_change const& on_change)
    : ecu_alive_(instance, [on_change](auto const& way) { on_change(Means::ecu_alive, way != nullptr); }),
      com_alive_(instance, [on_change](auto const& way) { on_change(Means::com_alive, way != nullptr); }),
      car_wake_up_(instance, [on_change](auto const& way) { on_change(Means::car_wake_up, way != nullptr); }),
      restart_("DSA_Interface") {}

void Application::request(Means means, Request const& request) {
    switch (means) {
        case Means::ecu_alive:
            way_to(ecu_alive_, request.patience)->RequestAlive().get();
            break;
        case Means::com_alive:
            way_to(com_alive_, request.patience)->RequestComAlive(request.cab_bits, request.ac_number).get();
            break;
        case Means::car_wake_up:
            way_to(car_wake_up_, request.patience)->RequestCarWakeUp(request.ac_number).get();
            break;
    }
}

void Application::release(Means means, Request const& request) {
    switch (means) {
        case Means::ecu_alive:
            way_to(ecu_alive_, request.patience)->ReleaseAlive().get();
            break;
        case Means::com_alive:
            way_to(com_alive_, request.patience)->ReleaseComAlive(request.cab_bits).get();
            break;
        case Means::car_wake_up:
            way_to(car_wake_up_, request.patience)->ReleaseCarWakeUp().get();
            break;
    }
}

void Application::restart(std::uint8_t type) {
    way_to(restart_, Request().patience)->RequestRestart(type).get();
}

}  // namespace bench::application
