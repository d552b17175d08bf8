#include "statemanager/config/state_manager_config.h"

#include <utility>

namespace ximo::ap::statemanager::config {
namespace {

bool add_up_to(std::uint32_t maximum, std::vector<std::string>& instances, std::string instance) {
    if (maximum <= instances.size()) {
        return false;
    }
    instances.push_back(std::move(instance));
    return true;
}

// The areas must follow each other and end inside the user data. Sums and products are those of the unsigned 32-bit
// type and wrap, so a layout with absurd numbers can pass: users of the layout check every index.
bool is_consistent(Nm_user_data_config const& layout) {
    return layout.ac_offset + layout.ac_bytes <= layout.cab_offset &&
           layout.cab_offset + layout.cab_bytes <= layout.user_data_bytes &&
           layout.max_cab_size_bits <= layout.cab_bytes * 8U;
}

}  // namespace

unsigned int State_manager_config::get_knockout_timer() const {
    return knockout_timer_;
}

void State_manager_config::set_knockout_timer(unsigned int cycles) {
    knockout_timer_ = cycles;
}

bool State_manager_config::is_nm_usage_allowed() const {
    return nm_usage_;
}

void State_manager_config::set_nm_usage(bool allowed) {
    nm_usage_ = allowed;
}

bool State_manager_config::is_request_network_on_entry_run_state_requested() const {
    return request_network_on_entry_run_state_;
}

void State_manager_config::set_request_network_on_entry_run_state(bool requested) {
    request_network_on_entry_run_state_ = requested;
}

unsigned int State_manager_config::get_main_function_period() const {
    return main_function_period_;
}

void State_manager_config::set_main_function_period(unsigned int milliseconds) {
    main_function_period_ = milliseconds;
}

std::string State_manager_config::get_smw_update_status_path() const {
    return smw_update_status_path_;
}

void State_manager_config::set_smw_update_status_path(std::string path) {
    smw_update_status_path_ = std::move(path);
}

std::string State_manager_config::get_smw_restart_command_path() const {
    return smw_restart_command_path_;
}

void State_manager_config::set_smw_restart_command_path(std::string path) {
    smw_restart_command_path_ = std::move(path);
}

Nm_user_data_config State_manager_config::get_nm_user_data_config() const {
    return nm_user_data_config_;
}

bool State_manager_config::set_nm_user_data_config(Nm_user_data_config layout) {
    if (!is_consistent(layout)) {
        return false;
    }
    nm_user_data_config_ = layout;
    return true;
}

std::vector<std::uint8_t> State_manager_config::get_nm_request_pattern() const {
    return nm_request_pattern_;
}

void State_manager_config::set_nm_request_pattern(std::vector<std::uint8_t> pattern) {
    nm_request_pattern_ = std::move(pattern);
}

std::vector<std::string> const& State_manager_config::get_apps_ecualive() const {
    return apps_ecualive_;
}

bool State_manager_config::add_apps_ecualive(std::string instance) {
    return add_up_to(max_apps_ecualive_, apps_ecualive_, std::move(instance));
}

unsigned int State_manager_config::get_max_apps_ecualive() const {
    return max_apps_ecualive_;
}

void State_manager_config::set_max_apps_ecualive(unsigned int maximum) {
    max_apps_ecualive_ = maximum;
}

std::vector<std::string> const& State_manager_config::get_apps_comalive() const {
    return apps_comalive_;
}

bool State_manager_config::add_apps_comalive(std::string instance) {
    return add_up_to(max_apps_comalive_, apps_comalive_, std::move(instance));
}

unsigned int State_manager_config::get_max_apps_comalive() const {
    return max_apps_comalive_;
}

void State_manager_config::set_max_apps_comalive(unsigned int maximum) {
    max_apps_comalive_ = maximum;
}

std::vector<std::string> const& State_manager_config::get_apps_cwu() const {
    return apps_cwu_;
}

bool State_manager_config::add_apps_cwu(std::string instance) {
    return add_up_to(max_apps_cwu_, apps_cwu_, std::move(instance));
}

void State_manager_config::set_max_apps_cwu(unsigned int maximum) {
    max_apps_cwu_ = maximum;
}

unsigned int State_manager_config::get_max_apps_cwu() const {
    return max_apps_cwu_;
}

void State_manager_config::set_app_timeout(unsigned int seconds) {
    app_timeout_ = seconds;
}

unsigned int State_manager_config::get_app_timeout() const {
    return app_timeout_;
}

void State_manager_config::set_dm_timeout(unsigned int seconds) {
    dm_timeout_ = seconds;
}

unsigned int State_manager_config::get_dm_timeout() const {
    return dm_timeout_;
}

void State_manager_config::set_pm_timeout(unsigned int seconds) {
    pm_timeout_ = seconds;
}

unsigned int State_manager_config::get_pm_timeout() const {
    return pm_timeout_;
}

void State_manager_config::set_alive_supervision_instance_id(std::string instance) {
    alive_supervision_instance_id_ = std::move(instance);
}

std::string State_manager_config::get_alive_supervision_instance_id() const {
    return alive_supervision_instance_id_;
}

}  // namespace ximo::ap::statemanager::config
