#include "statemanager/config/state_manager_config_abstract.h"
#include "support/virtual_slot.h"

#include <cstddef>
#include <vector>

#include <gtest/gtest.h>

namespace ximo::ap::statemanager::config {
namespace {

TEST(State_manager_config_abstract, The_operations_stand_in_the_order_of_the_interface) {
    using Sut = State_manager_config_abstract;
    test_support::expect_slots_from(
        1, &Sut::get_knockout_timer, &Sut::set_knockout_timer, &Sut::is_nm_usage_allowed, &Sut::set_nm_usage,
        &Sut::is_request_network_on_entry_run_state_requested, &Sut::set_request_network_on_entry_run_state,
        &Sut::get_main_function_period, &Sut::set_main_function_period, &Sut::get_smw_update_status_path,
        &Sut::set_smw_update_status_path, &Sut::get_smw_restart_command_path, &Sut::set_smw_restart_command_path,
        &Sut::get_nm_user_data_config, &Sut::set_nm_user_data_config, &Sut::get_nm_request_pattern,
        &Sut::set_nm_request_pattern, &Sut::get_apps_ecualive, &Sut::add_apps_ecualive, &Sut::get_max_apps_ecualive,
        &Sut::set_max_apps_ecualive, &Sut::get_apps_comalive, &Sut::add_apps_comalive, &Sut::get_max_apps_comalive,
        &Sut::set_max_apps_comalive, &Sut::get_apps_cwu, &Sut::add_apps_cwu, &Sut::set_max_apps_cwu,
        &Sut::get_max_apps_cwu, &Sut::set_app_timeout, &Sut::get_app_timeout, &Sut::set_dm_timeout,
        &Sut::get_dm_timeout, &Sut::set_pm_timeout, &Sut::get_pm_timeout, &Sut::set_alive_supervision_instance_id,
        &Sut::get_alive_supervision_instance_id);
}

}  // namespace
}  // namespace ximo::ap::statemanager::config
