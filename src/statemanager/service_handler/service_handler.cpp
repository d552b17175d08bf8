#include "statemanager/service_handler/service_handler.h"

#include "ara/log/logging.h"
#include "statemanager/service_handler/absent_nm_interface.h"
#include "statemanager/service_handler/infrastructure_failure.h"

#include <stdexcept>
#include <utility>

namespace ximo::ap::statemanager {

namespace {

// Length of what is requested of the network; applications' bits beyond it reach nobody.
constexpr std::uint32_t k_cab_pattern_bytes = 4;

// Octets that one argument of a call of network management may have.
constexpr std::size_t k_longest_argument = 1024;

void require_sendable(char const* setting, std::size_t bytes) {
    if (bytes > k_longest_argument) {
        throw std::length_error(std::string(setting) + " says " + std::to_string(bytes) +
                                " bytes, and network management takes " + std::to_string(k_longest_argument) +
                                " at most");
    }
}

void require_sendable(config::State_manager_config const& configuration) {
    require_sendable("UserDataBytes", configuration.get_nm_user_data_config().user_data_bytes);
    require_sendable("DefautNMRequestPattern", configuration.get_nm_request_pattern().size());
}

// Everything that an earlier life of the daemon may have left requested.
Bit_vector all_cab_bits_set() {
    return {0xFF, 0xFF, 0xFF, 0x01};
}

// The CAB area is expected at the end; without it the user data is shorter. One that is larger than all user data has
// no place in it.
std::uint32_t length_sent(config::Nm_user_data_config const& layout) {
    bool const cab_area_sent = layout.cab_bits_enabled || layout.cab_bytes > layout.user_data_bytes;
    return cab_area_sent ? layout.user_data_bytes : layout.user_data_bytes - layout.cab_bytes;
}

}  // namespace

Service_handler::Service_handler(config::State_manager_config const& configuration,
                                 std::unique_ptr<Nm_interface_abstract> network_management,
                                 Com_alive_services com_alive, Cwu_services cwu)
    : configuration_(configuration),
      nm_usage_(configuration.is_nm_usage_allowed()),
      network_management_(or_absent(std::move(network_management))),
      provided_(configuration.get_smw_restart_command_path(), configuration.get_apps_ecualive(), *this,
                std::move(com_alive), std::move(cwu)),
      requested_cab_pattern_(k_cab_pattern_bytes) {
    if (nm_usage_) {
        require_sendable(configuration_);
    }
}

// First nobody calls in any more, then nobody reports; the members go when no other thread is left to use them. A
// lookup that ends just now still calls network management, whose destructor waits for it: the pointer stays until
// then.
Service_handler::~Service_handler() {
    provided_.withdraw_restart_service();
    provided_.withdraw_application_services();
    std::default_delete<Nm_interface_abstract>()(network_management_.get());
    static_cast<void>(network_management_.release());
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
    for (auto const& service : provided_.com_alive()) {
        auto const id = service->get_instance_id();
        service->set_com_alive_request_cb([this, id](Bit_vector const& cab_bits, std::uint8_t ac_number) {
            handle_com_alive_request(id, cab_bits, ac_number);
        });
        service->set_com_alive_release_cb(
            [this, id](Bit_vector const& cab_bits) { handle_com_alive_release(id, cab_bits); });
    }
    for (auto const& service : provided_.cwu()) {
        auto const id = service->get_instance_id();
        service->set_cwu_request_cb([this, id](std::uint8_t ac_number) { handle_cwu_request(id, ac_number); });
        service->set_cwu_release_cb([this, id] { handle_cwu_release(id); });
    }
}

void Service_handler::init_network_management() {
    ara::log::LogInfo() << "NM usage is enabled";
    network_management_->set_network_state_updated_func(
        [this](Bit_vector const& state) { network_state_updated(state); });
    default_nm_pattern_ = configuration_.get_nm_request_pattern();
    ara::log::LogInfo() << "The following NM request pattern is used: " << bitvector2str(default_nm_pattern_);

    auto const layout = configuration_.get_nm_user_data_config();
    base::Lock_guard const lock(mutex_);
    user_data_.resize(length_sent(layout));
    aggregator_ = std::make_unique<nm::Nm_data_aggregator>(layout);
    aggregator_->init(k_cab_pattern_bytes);
}

bool Service_handler::start_offer_services() {
    bool const offered = provided_.offer_restart_service();
    return nm_usage_ ? look_up_network_management() && offered : offered;
}

bool Service_handler::look_up_network_management() {
    ara::log::LogInfo() << "Looking up UdpNM services...";
    return succeeds([this] { network_management_->start_find_services([this] { network_management_found(); }); });
}

void Service_handler::network_management_found() {
    {
        base::Lock_guard const lock(mutex_);
        init_user_data();
        if (may_send()) {
            network_management_->release_network(all_cab_bits_set());
        }
    }
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
    if (nm_usage_) {
        network_management_->request_network(default_nm_pattern_);
    }
}

void Service_handler::release_network() {
    ara::log::LogInfo() << "Releasing network with default NM pattern";
    if (nm_usage_) {
        network_management_->release_network(default_nm_pattern_);
    }
}

void Service_handler::network_state_updated(Bit_vector const& state) {
    ara::log::LogInfo() << "We received the notification that network was updated: " << bitvector2str(state);
    ecu_state_.update(has_bits(state));
}

}  // namespace ximo::ap::statemanager
