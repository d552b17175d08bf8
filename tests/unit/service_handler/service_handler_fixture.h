#ifndef TESTS_UNIT_SERVICE_HANDLER_SERVICE_HANDLER_FIXTURE_H
#define TESTS_UNIT_SERVICE_HANDLER_SERVICE_HANDLER_FIXTURE_H

#include "statemanager/service_handler/service_handler.h"
#include "statemanager/services/state_manager_com_alive_interface.h"
#include "statemanager/services/state_manager_cwu_interface.h"
#include "support/fake_binding.h"
#include "support/fake_network_management.h"
#include "support/log_capture.h"
#include "ximo/ap/statemanager/dsa_interface_proxy.h"
#include "ximo/ap/statemanager/state_management_alive_interface_proxy.h"
#include "ximo/ap/statemanager/state_management_com_alive_interface_proxy.h"
#include "ximo/ap/statemanager/state_management_cwu_interface_proxy.h"

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

namespace ximo::ap::statemanager {

using ara::log::LogLevel;
using test_support::logged;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

inline std::string const k_alive = "ximo::ap::statemanager::StateManagementAliveInterface";
inline std::string const k_com_alive = "ximo::ap::statemanager::StateManagementComAliveInterface";
inline std::string const k_cwu = "ximo::ap::statemanager::StateManagementCWUInterface";
inline std::string const k_dsa = "ximo::ap::statemanager::DSAInterface";

/// A service handler with the real services on a binding inside the process, and network management that does what a
/// test says. Applications: "door" and "roof" keep the ECU alive; "radio" and "phone" keep communication alive; "radio"
/// and "alarm" wake the car up.
class Service_handler_test : public testing::Test {
 protected:
    Service_handler_test() {
        configuration.set_max_apps_ecualive(2);
        configuration.set_max_apps_comalive(2);
        configuration.set_max_apps_cwu(2);
        configuration.add_apps_ecualive("door");
        configuration.add_apps_ecualive("roof");
        configuration.add_apps_comalive("radio");
        configuration.add_apps_comalive("phone");
        configuration.add_apps_cwu("radio");
        configuration.add_apps_cwu("alarm");
        configuration.set_nm_request_pattern({0x01, 0x00, 0x00, 0x00});
        configuration.set_smw_restart_command_path("/dev/null");
    }

    Service_handler& build() { return build(configuration); }
    Service_handler& build(config::State_manager_config const& settings) {
        auto client = std::make_unique<test_support::Fake_network_management>(actions);
        network = client.get();
        Service_handler::Com_alive_services com_alive;
        for (auto const& instance : settings.get_apps_comalive()) {
            com_alive.push_back(std::make_unique<State_manager_com_alive_interface>(instance));
        }
        Service_handler::Cwu_services cwu;
        for (auto const& instance : settings.get_apps_cwu()) {
            cwu.push_back(std::make_unique<State_manager_cwu_interface>(instance));
        }
        sut = std::make_unique<Service_handler>(settings, std::move(client), std::move(com_alive), std::move(cwu));
        return *sut;
    }

    /// Initialised, network management found, and what happened on the way forgotten.
    Service_handler& build_and_find() {
        build().init();
        network->be_found();
        forget();
        return *sut;
    }

    void forget() {
        log.clear();
        actions.clear();
        binding.clear_record();
    }

    /// An application's way to one of the services.
    template <class Proxy>
    static Proxy client(std::string const& interface_name, std::string const& instance) {
        return Proxy(ara::com::ServiceHandle(interface_name, ara::com::InstanceIdentifier(instance), ""));
    }
    static auto com_alive(std::string const& instance) {
        return client<proxy::StateManagementComAliveInterfaceProxy>(k_com_alive, instance);
    }
    static auto cwu(std::string const& instance) {
        return client<proxy::StateManagementCWUInterfaceProxy>(k_cwu, instance);
    }
    static auto ecu_alive(std::string const& instance) {
        return client<proxy::StateManagementAliveInterfaceProxy>(k_alive, instance);
    }

    /// Logged at info level, in order.
    std::vector<test_support::Log_message> told() { return log.messages(LogLevel::kInfo); }

    test_support::Fake_binding binding;
    test_support::Log_capture log;
    config::State_manager_config configuration;
    std::vector<std::string> actions;  ///< what network management was asked for
    test_support::Fake_network_management* network{nullptr};
    std::unique_ptr<Service_handler> sut;
};

}  // namespace ximo::ap::statemanager

#endif
