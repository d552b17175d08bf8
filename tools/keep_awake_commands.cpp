#include "tools/cab_options.h"
#include "tools/commands.h"
#include "tools/service_call.h"
#include "ximo/ap/statemanager/state_management_alive_interface_proxy.h"
#include "ximo/ap/statemanager/state_management_com_alive_interface_proxy.h"
#include "ximo/ap/statemanager/state_management_cwu_interface_proxy.h"

#include <CLI/CLI.hpp>
#include <memory>

namespace statectl {

namespace {

namespace proxies = ximo::ap::statemanager::proxy;

struct Keep_awake_options : Call_options, Cab_options {};

/// A subcommand of `service` with the options that all calls have.
template <class Action_of>
CLI::App* add_call(CLI::App& service, char const* name, char const* description,
                   std::shared_ptr<Keep_awake_options> const& options, Action& chosen, Action_of action) {
    auto* const command = service.add_subcommand(name, description);
    command->add_option("INSTANCE", options->instance, "Instance name of the application")->required();
    add_call_options(*command, *options);
    command->callback([options, &chosen, action] { chosen = [options, action] { return action(*options); }; });
    return command;
}

int request_alive(Keep_awake_options const& options) {
    return call<proxies::StateManagementAliveInterfaceProxy>(options, "ECU alive requested",
                                                             [](auto& proxy) { return proxy.RequestAlive(); });
}

int release_alive(Keep_awake_options const& options) {
    return call<proxies::StateManagementAliveInterfaceProxy>(options, "ECU alive released",
                                                             [](auto& proxy) { return proxy.ReleaseAlive(); });
}

int request_com_alive(Keep_awake_options const& options) {
    return call<proxies::StateManagementComAliveInterfaceProxy>(options, "COM alive requested", [&](auto& proxy) {
        return proxy.RequestComAlive(cab_bits(options), options.ac_number);
    });
}

int release_com_alive(Keep_awake_options const& options) {
    return call<proxies::StateManagementComAliveInterfaceProxy>(
        options, "COM alive released", [&](auto& proxy) { return proxy.ReleaseComAlive(cab_bits(options)); });
}

int request_car_wake_up(Keep_awake_options const& options) {
    return call<proxies::StateManagementCWUInterfaceProxy>(
        options, "Car wake-up requested", [&](auto& proxy) { return proxy.RequestCarWakeUp(options.ac_number); });
}

int release_car_wake_up(Keep_awake_options const& options) {
    return call<proxies::StateManagementCWUInterfaceProxy>(options, "Car wake-up released",
                                                           [](auto& proxy) { return proxy.ReleaseCarWakeUp(); });
}

CLI::App& add_service(CLI::App& program, char const* name, char const* description) {
    auto* const service = program.add_subcommand(name, description);
    service->require_subcommand(1);
    return *service;
}

}  // namespace

void add_ecu_alive_command(CLI::App& program, Action& chosen) {
    auto const options = std::make_shared<Keep_awake_options>();
    auto& service = add_service(program, "ecu-alive", "Keep the ECU alive on behalf of an application");
    add_call(service, "request", "Keep it alive", options, chosen, &request_alive);
    add_call(service, "release", "Keep it alive no longer", options, chosen, &release_alive);
}

void add_com_alive_command(CLI::App& program, Action& chosen) {
    auto const options = std::make_shared<Keep_awake_options>();
    auto& service = add_service(program, "com-alive", "Keep communication alive on behalf of an application");
    auto* const request =
        add_call(service, "request", "Hold CAB bits, and one AC bit", options, chosen, &request_com_alive);
    add_cab_options(*request, *options);
    add_ac_option(*request, *options);
    auto* const release = add_call(service, "release", "Give CAB bits back", options, chosen, &release_com_alive);
    add_cab_options(*release, *options);
}

void add_cwu_command(CLI::App& program, Action& chosen) {
    auto const options = std::make_shared<Keep_awake_options>();
    auto& service = add_service(program, "cwu", "Wake the whole vehicle on behalf of an application");
    auto* const request =
        add_call(service, "request", "Raise the car-wake-up request", options, chosen, &request_car_wake_up);
    add_ac_option(*request, *options);
    add_call(service, "release", "Drop it", options, chosen, &release_car_wake_up);
}

}  // namespace statectl
