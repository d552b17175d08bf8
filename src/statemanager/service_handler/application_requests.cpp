#include "statemanager/service_handler/application_requests.h"

#include "ara/log/logging.h"
#include "statemanager/nm/nm_data_aggregator.h"
#include "statemanager/service_handler/nm_interface_abstract.h"
#include "statemanager/service_handler/provided_services.h"
#include "status/driver_status.h"
#include "status/services_status.h"

#include <utility>

namespace ximo::ap::statemanager {

namespace {

// Length of what is requested of the network; applications' bits beyond it reach nobody.
constexpr std::uint32_t k_cab_pattern_bytes = 4;

// Everything that an earlier life of the daemon may have left requested.
Bit_vector all_cab_bits_set() {
    return {0xFF, 0xFF, 0xFF, 0x01};
}

// The bit of the network that stands for an ECU that is kept alive, whoever keeps it so.
Bit_vector ecu_alive_pattern() {
    return {0x00, 0x00, 0x01, 0x00};
}

// The CAB area is expected at the end; without it the user data is shorter. One that is larger than all user data has
// no place in it.
std::uint32_t length_sent(config::Nm_user_data_config const& layout) {
    bool const cab_area_sent = layout.cab_bits_enabled || layout.cab_bytes > layout.user_data_bytes;
    return cab_area_sent ? layout.user_data_bytes : layout.user_data_bytes - layout.cab_bytes;
}

}  // namespace

Application_requests::Application_requests(bool nm_usage, Nm_interface_abstract& network_management,
                                           Provided_services const& provided)
    : nm_usage_(nm_usage),
      network_management_(network_management),
      provided_(provided),
      requested_cab_pattern_(k_cab_pattern_bytes) {}

Application_requests::~Application_requests() = default;

void Application_requests::init(config::Nm_user_data_config const& layout, Bit_vector default_pattern) {
    default_nm_pattern_ = std::move(default_pattern);
    base::Lock_guard const lock(mutex_);
    user_data_.resize(length_sent(layout));
    aggregator_ = std::make_unique<nm::Nm_data_aggregator>(layout);
    aggregator_->init(k_cab_pattern_bytes);
}

void Application_requests::network_management_found() {
    base::Lock_guard const lock(mutex_);
    status::manager_found();
    init_user_data();
    if (may_send()) {
        network_management_.release_network(all_cab_bits_set());
    }
}

void Application_requests::request_default_pattern() {
    if (nm_usage_) {
        status::default_pattern(true);
        network_management_.request_network(default_nm_pattern_);
    }
}

void Application_requests::release_default_pattern() {
    if (nm_usage_) {
        status::default_pattern(false);
        network_management_.release_network(default_nm_pattern_);
    }
}

void Application_requests::handle_com_alive_request(std::string const& id, Bit_vector const& cab_bits,
                                                    std::uint8_t ac_number) {
    base::Lock_guard const lock(mutex_);
    ara::log::LogInfo() << "State_manager::handle_com_alive_request(" << id << ", " << bitvector2str(cab_bits) << ", "
                        << ac_number << ")";
    status::com_requested(id, cab_bits, ac_number);
    if (aggregator_) {
        aggregator_->set_ac_bit(id, ac_number);
        aggregator_->request_cab_bits(id, cab_bits);
        com_alive_ = aggregator_->is_com_alive();
        request_network(aggregator_->get_application_bits() ^ requested_cab_pattern_);
        set_user_data(aggregator_->get_user_data());
    }
}

void Application_requests::handle_com_alive_release(std::string const& id, Bit_vector const& cab_bits) {
    base::Lock_guard const lock(mutex_);
    ara::log::LogInfo() << "State_manager::handle_com_alive_release(" << id << ", " << bitvector2str(cab_bits) << ")";
    status::com_released(id, cab_bits);
    if (aggregator_) {
        aggregator_->release_cab_bits(id, cab_bits);
        com_alive_ = aggregator_->is_com_alive();
        release_network(aggregator_->get_application_bits() ^ requested_cab_pattern_);
        set_user_data(aggregator_->get_user_data());
    }
}

void Application_requests::handle_cwu_request(std::string const& id, std::uint8_t ac_number) {
    base::Lock_guard const lock(mutex_);
    ara::log::LogInfo() << "State_manager::handle_cwu_request(" << id << ", " << ac_number << ")";
    status::cwu_requested(id, ac_number);
    if (aggregator_) {
        aggregator_->set_ac_bit(id, ac_number);
        aggregator_->request_cwu(id);
        com_alive_ = aggregator_->is_com_alive();
        set_user_data(aggregator_->get_user_data());
    }
}

void Application_requests::handle_cwu_release(std::string const& id) {
    base::Lock_guard const lock(mutex_);
    ara::log::LogInfo() << "State_manager::handle_cwu_release(" << id << ")";
    status::cwu_released(id);
    if (aggregator_) {
        aggregator_->release_cwu(id);
        com_alive_ = aggregator_->is_com_alive();
        set_user_data(aggregator_->get_user_data());
    }
}

void Application_requests::ecu_alive_request(std::string const& instance_id) {
    ara::log::LogInfo() << "State_manager::ecu_alive_request: " << instance_id;
    base::Lock_guard const lock(mutex_);
    status::ecu_requested(instance_id);
    if (may_send()) {
        network_management_.request_network(ecu_alive_pattern());
        ecu_alive_requested_ = true;
    }
}

void Application_requests::ecu_alive_release(std::string const& instance_id) {
    ara::log::LogDebug() << "State_manager::ecu_alive_release: " << instance_id;
    base::Lock_guard const lock(mutex_);
    status::ecu_released(instance_id);
    if (!provided_.app_keeps_ecu_alive() && may_send()) {
        ara::log::LogInfo() << "State_manager::ecu_alive_release network";
        network_management_.release_network(ecu_alive_pattern());
        ecu_alive_requested_ = false;
    }
}

void Application_requests::init_user_data() {
    ara::log::LogInfo() << "Initializing user data";
    set_user_data(aggregator_->get_user_data());
}

void Application_requests::set_user_data(Bit_vector const& data) {
    Bit_vector sent(data);
    sent.resize(user_data_.size());
    if (sent == user_data_) {
        ara::log::LogInfo() << "State_manager::set_user_data: no change to user data";
        return;
    }
    user_data_ = sent;
    status::user_data(user_data_);
    ara::log::LogInfo() << "State_manager::set_user_data(" << bitvector2str(user_data_) << ")";
    if (may_send()) {
        network_management_.set_user_data(user_data_);
    }
}

void Application_requests::request_network(Bit_vector const& bits) {
    if (!has_bits(bits)) {
        ara::log::LogInfo() << "State_manager::request_network: no changes to CAB pattern";
        return;
    }
    ara::log::LogInfo() << "State_manager::request_network(" << bitvector2str(bits) << ")";
    requested_cab_pattern_ |= bits;
    status::cab_pattern(requested_cab_pattern_);
    if (may_send()) {
        network_management_.request_network(bits);
    }
}

void Application_requests::release_network(Bit_vector const& bits) {
    if (!has_bits(bits)) {
        ara::log::LogInfo() << "State_manager::release_network: no changes to CAB pattern";
        return;
    }
    ara::log::LogInfo() << "State_manager::release_network(" << bitvector2str(bits) << ")";
    requested_cab_pattern_ &= ~bits;
    status::cab_pattern(requested_cab_pattern_);
    if (may_send()) {
        // In place: a default pattern that is shorter than the bits says nothing about the rest of them.
        Bit_vector released(bits);
        released &= ~default_nm_pattern_;
        network_management_.release_network(released);
    }
}

// What applications ask for meanwhile is kept, and not sent.
void Application_requests::standby() {
    base::Lock_guard const lock(mutex_);
    if (nm_usage_) {
        ara::log::LogInfo() << "Stop sending NM messages";
        ecu_alive_release("Standby call");
        network_management_.set_user_data(Bit_vector(user_data_.size()));
        network_management_.release_network(requested_cab_pattern_);
        network_management_.release_network(default_nm_pattern_);
    } else {
        ara::log::LogInfo() << "UdpNm usage disabled, no preparing actions performed";
    }
    nm_active_ = false;
    status::sending(false);
    status::default_pattern(false);
}

void Application_requests::end_standby() {
    base::Lock_guard const lock(mutex_);
    nm_active_ = true;
    status::sending(true);
    if (!nm_usage_) {
        ara::log::LogInfo() << "UdpNm usage disabled, no resuming actions performed";
        return;
    }
    ara::log::LogInfo() << "Start sending NM messages";
    status::default_pattern(true);
    network_management_.request_network(default_nm_pattern_);
    network_management_.request_network(requested_cab_pattern_);
    if (provided_.app_keeps_ecu_alive()) {
        ecu_alive_request("End standby call");
    }
    if (aggregator_) {
        network_management_.set_user_data(aggregator_->get_user_data());
    }
    release_owed_ecu_alive();
}

// An application that gave the ECU up during the suspend can't be asked again: what it held is given back now, less
// what was just requested for others.
void Application_requests::release_owed_ecu_alive() {
    if (!ecu_alive_requested_ || provided_.app_keeps_ecu_alive()) {
        return;
    }
    ecu_alive_requested_ = false;
    Bit_vector owed(ecu_alive_pattern());
    owed &= ~default_nm_pattern_;
    owed &= ~requested_cab_pattern_;
    if (has_bits(owed)) {
        ara::log::LogInfo() << "State_manager::ecu_alive_release network";
        network_management_.release_network(owed);
    }
}

}  // namespace ximo::ap::statemanager
