#ifndef STATEMANAGER_CONFIG_STATE_MANAGER_CONFIG_H
#define STATEMANAGER_CONFIG_STATE_MANAGER_CONFIG_H

#include "statemanager/config/nm_user_data_config.h"
#include "statemanager/config/state_manager_config_abstract.h"

#include <cstdint>
#include <string>
#include <vector>

namespace ximo::ap::statemanager::config {

/// The settings themselves: the defaults when made, then what the configuration file says, then constant. What each
/// setting means stands in the abstract class; what the file calls it stands in ap_statemanager.json(5).
///
/// Filled by one thread before any other is started; read without a lock from then on.
class State_manager_config : public State_manager_config_abstract {
 public:
    unsigned int get_knockout_timer() const override;
    void set_knockout_timer(unsigned int cycles) override;
    bool is_nm_usage_allowed() const override;
    void set_nm_usage(bool allowed) override;
    bool is_request_network_on_entry_run_state_requested() const override;
    void set_request_network_on_entry_run_state(bool requested) override;
    unsigned int get_main_function_period() const override;
    void set_main_function_period(unsigned int milliseconds) override;
    std::string get_smw_update_status_path() const override;
    void set_smw_update_status_path(std::string path) override;
    std::string get_smw_restart_command_path() const override;
    void set_smw_restart_command_path(std::string path) override;
    Nm_user_data_config get_nm_user_data_config() const override;
    bool set_nm_user_data_config(Nm_user_data_config layout) override;
    std::vector<std::uint8_t> get_nm_request_pattern() const override;
    void set_nm_request_pattern(std::vector<std::uint8_t> pattern) override;
    std::vector<std::string> const& get_apps_ecualive() const override;
    bool add_apps_ecualive(std::string instance) override;
    unsigned int get_max_apps_ecualive() const override;
    void set_max_apps_ecualive(unsigned int maximum) override;
    std::vector<std::string> const& get_apps_comalive() const override;
    bool add_apps_comalive(std::string instance) override;
    unsigned int get_max_apps_comalive() const override;
    void set_max_apps_comalive(unsigned int maximum) override;
    std::vector<std::string> const& get_apps_cwu() const override;
    bool add_apps_cwu(std::string instance) override;
    void set_max_apps_cwu(unsigned int maximum) override;
    unsigned int get_max_apps_cwu() const override;
    void set_app_timeout(unsigned int seconds) override;
    unsigned int get_app_timeout() const override;
    void set_dm_timeout(unsigned int seconds) override;
    unsigned int get_dm_timeout() const override;
    void set_pm_timeout(unsigned int seconds) override;
    unsigned int get_pm_timeout() const override;
    void set_alive_supervision_instance_id(std::string instance) override;
    std::string get_alive_supervision_instance_id() const override;

 private:
    std::uint32_t knockout_timer_{3};
    bool nm_usage_{true};
    bool request_network_on_entry_run_state_{true};
    std::uint32_t main_function_period_{100};
    std::string smw_update_status_path_{"/sys/vmctl/set_status"};
    std::string smw_restart_command_path_{"/sys/vmctl/command_request"};
    Nm_user_data_config nm_user_data_config_;
    std::vector<std::uint8_t> nm_request_pattern_;
    std::uint32_t max_apps_ecualive_{0};
    std::vector<std::string> apps_ecualive_;
    std::uint32_t max_apps_comalive_{0};
    std::vector<std::string> apps_comalive_;
    std::uint32_t max_apps_cwu_{0};
    std::vector<std::string> apps_cwu_;
    std::uint32_t app_timeout_{60};
    std::uint32_t dm_timeout_{60};
    std::uint32_t pm_timeout_{60};
    std::string alive_supervision_instance_id_;
};

}  // namespace ximo::ap::statemanager::config

#endif
