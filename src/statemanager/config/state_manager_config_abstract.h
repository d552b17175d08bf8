#ifndef STATEMANAGER_CONFIG_STATE_MANAGER_CONFIG_ABSTRACT_H
#define STATEMANAGER_CONFIG_STATE_MANAGER_CONFIG_ABSTRACT_H

#include "statemanager/config/nm_user_data_config.h"

#include <cstdint>
#include <string>
#include <vector>

namespace ximo::ap::statemanager::config {

/// Every setting of the daemon, as its users see it: filled once at the start, then only read.
class State_manager_config_abstract {
 public:
    State_manager_config_abstract() = default;
    virtual ~State_manager_config_abstract() = default;
    State_manager_config_abstract(State_manager_config_abstract const&) = delete;
    State_manager_config_abstract& operator=(State_manager_config_abstract const&) = delete;

    // Cycles that the post-run state waits for applications that keep the ECU alive.
    virtual unsigned int get_knockout_timer() const = 0;
    virtual void set_knockout_timer(unsigned int cycles) = 0;

    // Whether network management is used at all.
    virtual bool is_nm_usage_allowed() const = 0;
    virtual void set_nm_usage(bool allowed) = 0;

    // Whether the running state requests the network on entry.
    virtual bool is_request_network_on_entry_run_state_requested() const = 0;
    virtual void set_request_network_on_entry_run_state(bool requested) = 0;

    // Period of the driver's cycle, milliseconds.
    virtual unsigned int get_main_function_period() const = 0;
    virtual void set_main_function_period(unsigned int milliseconds) = 0;

    // VM-control file of the state words.
    virtual std::string get_smw_update_status_path() const = 0;
    virtual void set_smw_update_status_path(std::string path) = 0;

    // VM-control file of the restart words.
    virtual std::string get_smw_restart_command_path() const = 0;
    virtual void set_smw_restart_command_path(std::string path) = 0;

    // Layout of the NM user data; a layout whose areas overlap or do not fit is refused with false.
    virtual Nm_user_data_config get_nm_user_data_config() const = 0;
    virtual bool set_nm_user_data_config(Nm_user_data_config layout) = 0;

    // Bits set in the network request whenever the network is requested.
    virtual std::vector<std::uint8_t> get_nm_request_pattern() const = 0;
    virtual void set_nm_request_pattern(std::vector<std::uint8_t> pattern) = 0;

    // Instances of the ECU-alive service; adding one beyond the maximum is refused with false.
    virtual std::vector<std::string> const& get_apps_ecualive() const = 0;
    virtual bool add_apps_ecualive(std::string instance) = 0;
    virtual unsigned int get_max_apps_ecualive() const = 0;
    virtual void set_max_apps_ecualive(unsigned int maximum) = 0;

    // The same for the COM-alive service.
    virtual std::vector<std::string> const& get_apps_comalive() const = 0;
    virtual bool add_apps_comalive(std::string instance) = 0;
    virtual unsigned int get_max_apps_comalive() const = 0;
    virtual void set_max_apps_comalive(unsigned int maximum) = 0;

    // The same for the car-wake-up service.
    virtual std::vector<std::string> const& get_apps_cwu() const = 0;
    virtual bool add_apps_cwu(std::string instance) = 0;
    virtual void set_max_apps_cwu(unsigned int maximum) = 0;
    virtual unsigned int get_max_apps_cwu() const = 0;

    // Time for applications to answer a suspend request, seconds.
    virtual void set_app_timeout(unsigned int seconds) = 0;
    virtual unsigned int get_app_timeout() const = 0;

    // The same for the diagnostic managers, seconds.
    virtual void set_dm_timeout(unsigned int seconds) = 0;
    virtual unsigned int get_dm_timeout() const = 0;

    // Time budget of the power-off, seconds.
    virtual void set_pm_timeout(unsigned int seconds) = 0;
    virtual unsigned int get_pm_timeout() const = 0;

    // Instance of the alive supervision.
    virtual void set_alive_supervision_instance_id(std::string instance) = 0;
    virtual std::string get_alive_supervision_instance_id() const = 0;
};

}  // namespace ximo::ap::statemanager::config

#endif
