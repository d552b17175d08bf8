#include "statemanager/config/state_manager_config_abstract.h"
#include "support/virtual_slot.h"

#include <cstddef>
#include <vector>

#include <gtest/gtest.h>

namespace ximo::ap::statemanager::config {
namespace {

using test_support::virtual_slot;

TEST(State_manager_config_abstract, The_operations_stand_in_the_order_of_the_interface) {
    using Sut = State_manager_config_abstract;
    std::vector<std::size_t> const slots{
        virtual_slot(&Sut::get_knockout_timer),
        virtual_slot(&Sut::set_knockout_timer),
        virtual_slot(&Sut::is_nm_usage_allowed),
        virtual_slot(&Sut::set_nm_usage),
        virtual_slot(&Sut::is_request_network_on_entry_run_state_requested),
        virtual_slot(&Sut::set_request_network_on_entry_run_state),
        virtual_slot(&Sut::get_main_function_period),
        virtual_slot(&Sut::set_main_function_period),
        virtual_slot(&Sut::get_smw_update_status_path),
        virtual_slot(&Sut::set_smw_update_status_path),
        virtual_slot(&Sut::get_smw_restart_command_path),
        virtual_slot(&Sut::set_smw_restart_command_path),
        virtual_slot(&Sut::get_nm_user_data_config),
        virtual_slot(&Sut::set_nm_user_data_config),
        virtual_slot(&Sut::get_nm_request_pattern),
        virtual_slot(&Sut::set_nm_request_pattern),
        virtual_slot(&Sut::get_apps_ecualive),
        virtual_slot(&Sut::add_apps_ecualive),
        virtual_slot(&Sut::get_max_apps_ecualive),
        virtual_slot(&Sut::set_max_apps_ecualive),
        virtual_slot(&Sut::get_apps_comalive),
        virtual_slot(&Sut::add_apps_comalive),
        virtual_slot(&Sut::get_max_apps_comalive),
        virtual_slot(&Sut::set_max_apps_comalive),
        virtual_slot(&Sut::get_apps_cwu),
        virtual_slot(&Sut::add_apps_cwu),
        virtual_slot(&Sut::set_max_apps_cwu),
        virtual_slot(&Sut::get_max_apps_cwu),
        virtual_slot(&Sut::set_app_timeout),
        virtual_slot(&Sut::get_app_timeout),
        virtual_slot(&Sut::set_dm_timeout),
        virtual_slot(&Sut::get_dm_timeout),
        virtual_slot(&Sut::set_pm_timeout),
        virtual_slot(&Sut::get_pm_timeout),
        virtual_slot(&Sut::set_alive_supervision_instance_id),
        virtual_slot(&Sut::get_alive_supervision_instance_id),
    };

    ASSERT_EQ(slots.size(), 36U);
    for (std::size_t index = 0; index < slots.size(); ++index) {
        EXPECT_EQ(slots[index], index + 1);
    }
}

}  // namespace
}  // namespace ximo::ap::statemanager::config
