#include "simulation/applications.h"

#include "ximo/ap/statemanager/dsa_interface_proxy.h"
#include "ximo/ap/statemanager/state_management_alive_interface_proxy.h"
#include "ximo/ap/statemanager/state_management_com_alive_interface_proxy.h"
#include "ximo/ap/statemanager/state_management_cwu_interface_proxy.h"

#include <exception>

namespace simulation {

namespace {

namespace proxies = ximo::ap::statemanager::proxy;
using Ecu = proxies::StateManagementAliveInterfaceProxy;
using Com = proxies::StateManagementComAliveInterfaceProxy;
using Car = proxies::StateManagementCWUInterfaceProxy;

ara::com::ServiceHandle handle_of(std::string const& instance) {
    return ara::com::ServiceHandle(ara::com::InstanceIdentifier(instance));
}

// As a script has it.
std::string with(std::uint8_t ac_number) {
    return ac_number == 0 ? std::string() : " ac " + std::to_string(ac_number);
}

}  // namespace

// The call is noted before what it leads to.
template <class Call>
void Applications::make(std::string const& instance, std::string const& what, Call call) {
    network_.when_free([this, instance, what, call] {
        stage_.note(Kind::application, instance, what);
        try {
            call();
        } catch (std::exception const&) {
            stage_.note(Kind::application, instance, what + ", failed");
        }
    });
}

void Applications::request_ecu(std::string const& instance) {
    make(instance, "requests ecu", [=] { Ecu(handle_of(instance)).RequestAlive().get(); });
}

void Applications::release_ecu(std::string const& instance) {
    make(instance, "releases ecu", [=] { Ecu(handle_of(instance)).ReleaseAlive().get(); });
}

void Applications::request_com(std::string const& instance, Bits const& bits, std::uint8_t ac_number) {
    make(instance, "requests com " + text_of(bits) + with(ac_number),
         [=] { Com(handle_of(instance)).RequestComAlive(bits, ac_number).get(); });
}

void Applications::release_com(std::string const& instance, Bits const& bits) {
    make(instance, "releases com " + text_of(bits), [=] { Com(handle_of(instance)).ReleaseComAlive(bits).get(); });
}

void Applications::request_car_wake_up(std::string const& instance, std::uint8_t ac_number) {
    make(instance, "requests wake-up" + with(ac_number),
         [=] { Car(handle_of(instance)).RequestCarWakeUp(ac_number).get(); });
}

void Applications::release_car_wake_up(std::string const& instance) {
    make(instance, "releases wake-up", [=] { Car(handle_of(instance)).ReleaseCarWakeUp().get(); });
}

void Applications::request_restart(std::uint8_t type) {
    make("diagnostics", "requests restart " + std::to_string(type),
         [=] { proxies::DSAInterfaceProxy(handle_of("DSA_Interface")).RequestRestart(type).get(); });
}

}  // namespace simulation
