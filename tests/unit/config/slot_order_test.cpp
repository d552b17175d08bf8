#include "statemanager/config/state_manager_config_abstract.h"

#include <cstddef>
#include <cstring>
#include <vector>

#include <gtest/gtest.h>

namespace ximo::ap::statemanager::config {
namespace {

// Where an operation stands in the virtual table, 1 being the first after the destructor, which takes two entries. A
// pointer to a virtual member holds the entry's distance in bytes; some ABIs add 1 to it as a mark.
template <class Operation>
std::size_t slot(Operation operation) {
    std::size_t distance = 0;
    static_assert(sizeof operation >= sizeof distance);
    std::memcpy(&distance, &operation, sizeof distance);
    return (distance & ~std::size_t{1}) / sizeof(void*) - 1;
}

TEST(State_manager_config_abstract, The_operations_stand_in_the_order_of_the_interface) {
    using Sut = State_manager_config_abstract;
    std::vector<std::size_t> const slots{
        slot(&Sut::get_knockout_timer),
        slot(&Sut::set_knockout_timer),
        slot(&Sut::is_nm_usage_allowed),
        slot(&Sut::set_nm_usage),
        slot(&Sut::is_request_network_on_entry_run_state_requested),
        slot(&Sut::set_request_network_on_entry_run_state),
        slot(&Sut::get_main_function_period),
        slot(&Sut::set_main_function_period),
        slot(&Sut::get_smw_update_status_path),
        slot(&Sut::set_smw_update_status_path),
        slot(&Sut::get_smw_restart_command_path),
        slot(&Sut::set_smw_restart_command_path),
        slot(&Sut::get_nm_user_data_config),
        slot(&Sut::set_nm_user_data_config),
        slot(&Sut::get_nm_request_pattern),
        slot(&Sut::set_nm_request_pattern),
        slot(&Sut::get_apps_ecualive),
        slot(&Sut::add_apps_ecualive),
        slot(&Sut::get_max_apps_ecualive),
        slot(&Sut::set_max_apps_ecualive),
        slot(&Sut::get_apps_comalive),
        slot(&Sut::add_apps_comalive),
        slot(&Sut::get_max_apps_comalive),
        slot(&Sut::set_max_apps_comalive),
        slot(&Sut::get_apps_cwu),
        slot(&Sut::add_apps_cwu),
        slot(&Sut::set_max_apps_cwu),
        slot(&Sut::get_max_apps_cwu),
        slot(&Sut::set_app_timeout),
        slot(&Sut::get_app_timeout),
        slot(&Sut::set_dm_timeout),
        slot(&Sut::get_dm_timeout),
        slot(&Sut::set_pm_timeout),
        slot(&Sut::get_pm_timeout),
        slot(&Sut::set_alive_supervision_instance_id),
        slot(&Sut::get_alive_supervision_instance_id),
    };

    ASSERT_EQ(slots.size(), 36U);
    for (std::size_t index = 0; index < slots.size(); ++index) {
        EXPECT_EQ(slots[index], index + 1);
    }
}

}  // namespace
}  // namespace ximo::ap::statemanager::config
