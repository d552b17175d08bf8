#include "statemanager/service_handler/service_handler.h"

#include "ara/log/logging.h"
#include "statemanager/config/require_sendable.h"
#include "statemanager/service_handler/absent_nm_interface.h"
#include "statemanager/service_handler/infrastructure_failure.h"
#include "status/network_status.h"
#include "status/services_status.h"

#include <utility>

namespace ximo::ap::statemanager {

Service_handler::Service_handler(config::State_manager_config const& configuration,
                                 std::unique_ptr<Nm_interface_abstract> network_management,
                                 Com_alive_services com_alive, Cwu_services cwu)
    : configuration_(configuration),
      nm_usage_(configuration.is_nm_usage_allowed()),
      owned_network_management_(or_absent(std::move(network_management))),
      network_management_(*owned_network_management_),
      provided_(configuration.get_smw_restart_command_path(), configuration.get_apps_ecualive(), *this,
                std::move(com_alive), std::move(cwu)),
      requests_(nm_usage_, network_management_, provided_) {
    if (nm_usage_) {
        config::require_sendable(configuration_);
    }
}

// First nobody calls in any more, then nobody reports: a lookup that ends just now still calls network management,
// whose destructor waits for it. The members go when no other thread is left to use them.
Service_handler::~Service_handler() {
    provided_.withdraw_restart_service();
    provided_.withdraw_application_services();
    owned_network_management_.reset();
}

bool Service_handler::init() {
    register_callbacks();
    if (nm_usage_) {
        init_network_management();
    } else {
        ara::log::LogInfo() << "NM usage is disabled";
    }
    return start_offer_services();
}

void Service_handler::register_callbacks() {
    status::provided(status::Hold::ecu_alive, configuration_.get_apps_ecualive());
    status::provided(status::Hold::com_alive, configuration_.get_apps_comalive());
    status::provided(status::Hold::car_wake_up, configuration_.get_apps_cwu());
    for (auto const& service : provided_.com_alive()) {
        auto const id = service->get_instance_id();
        service->set_com_alive_request_cb([this, id](Bit_vector const& cab_bits, std::uint8_t ac_number) {
            requests_.handle_com_alive_request(id, cab_bits, ac_number);
        });
        service->set_com_alive_release_cb(
            [this, id](Bit_vector const& cab_bits) { requests_.handle_com_alive_release(id, cab_bits); });
    }
    for (auto const& service : provided_.cwu()) {
        auto const id = service->get_instance_id();
        service->set_cwu_request_cb(
            [this, id](std::uint8_t ac_number) { requests_.handle_cwu_request(id, ac_number); });
        service->set_cwu_release_cb([this, id] { requests_.handle_cwu_release(id); });
    }
}

void Service_handler::init_network_management() {
    ara::log::LogInfo() << "NM usage is enabled";
    network_management_.set_network_state_updated_func(
        [this](Bit_vector const& state) { network_state_updated(state); });
    auto const default_pattern = configuration_.get_nm_request_pattern();
    ara::log::LogInfo() << "The following NM request pattern is used: " << bitvector2str(default_pattern);
    requests_.init(configuration_.get_nm_user_data_config(), default_pattern);
}

bool Service_handler::start_offer_services() {
    bool const offered = provided_.offer_restart_service();
    return nm_usage_ ? look_up_network_management() && offered : offered;
}

bool Service_handler::look_up_network_management() {
    ara::log::LogInfo() << "Looking up UdpNM services...";
    return succeeds([this] { network_management_.start_find_services([this] { network_management_found(); }); });
}

void Service_handler::network_management_found() {
    requests_.network_management_found();
    provided_.offer_application_services();
    nm_available_ = true;
}

void Service_handler::deinit() {
    provided_.withdraw_restart_service();
    if (nm_usage_) {
        provided_.withdraw_application_services();
    }
}

void Service_handler::request_network() {
    ara::log::LogInfo() << "Requesting network with default NM pattern";
    requests_.request_default_pattern();
}

void Service_handler::release_network() {
    ara::log::LogInfo() << "Releasing network with default NM pattern";
    requests_.release_default_pattern();
}

void Service_handler::network_state_updated(Bit_vector const& state) {
    ara::log::LogInfo() << "We received the notification that network was updated: " << bitvector2str(state);
    ecu_state_.update(has_bits(state));
    status::network_state(state.data(), state.size());
}

}  // namespace ximo::ap::statemanager
