#include "bench/application/application.h"

#include "tarq/com/exception.h"

namespace bench::application {

namespace {

constexpr std::chrono::milliseconds k_patience{0};  // what is not offered yet is the user's business

/// The way to an instance that has been offered.
template <class Proxy>
std::shared_ptr<Proxy> way_to(statectl::Found_instance<Proxy>& instance) {
    auto proxy = instance.await(k_patience);
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
            way_to(ecu_alive_)->RequestAlive().get();
            break;
        case Means::com_alive:
            way_to(com_alive_)->RequestComAlive(request.cab_bits, request.ac_number).get();
            break;
        case Means::car_wake_up:
            way_to(car_wake_up_)->RequestCarWakeUp(request.ac_number).get();
            break;
    }
}

void Application::release(Means means, Request const& request) {
    switch (means) {
        case Means::ecu_alive:
            way_to(ecu_alive_)->ReleaseAlive().get();
            break;
        case Means::com_alive:
            way_to(com_alive_)->ReleaseComAlive(request.cab_bits).get();
            break;
        case Means::car_wake_up:
            way_to(car_wake_up_)->ReleaseCarWakeUp().get();
            break;
    }
}

void Application::restart(std::uint8_t type) {
    way_to(restart_)->RequestRestart(type).get();
}

}  // namespace bench::application
