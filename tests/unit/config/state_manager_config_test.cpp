#include "statemanager/config/state_manager_config.h"

#include <limits>

#include <gmock/gmock.h>

namespace ximo::ap::statemanager::config {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto k_largest = std::numeric_limits<std::uint32_t>::max();

void expect_default_layout(Nm_user_data_config const& layout) {
    EXPECT_EQ(layout.user_data_bytes, 6U);
    EXPECT_EQ(layout.cwu_bit_position, 6U);
    EXPECT_EQ(layout.ac_offset, 1U);
    EXPECT_EQ(layout.ac_bytes, 2U);
    EXPECT_EQ(layout.cab_offset, 3U);
    EXPECT_EQ(layout.cab_bytes, 3U);
    EXPECT_EQ(layout.max_cab_size_bits, 24U);
    EXPECT_FALSE(layout.cab_bits_enabled);
}

TEST(State_manager_config, A_new_configuration_holds_the_defaults) {
    State_manager_config const sut;

    EXPECT_EQ(sut.get_knockout_timer(), 3U);
    EXPECT_TRUE(sut.is_nm_usage_allowed());
    EXPECT_TRUE(sut.is_request_network_on_entry_run_state_requested());
    EXPECT_EQ(sut.get_main_function_period(), 100U);
    EXPECT_EQ(sut.get_smw_update_status_path(), "/sys/vmctl/set_status");
    EXPECT_EQ(sut.get_smw_restart_command_path(), "/sys/vmctl/command_request");
    expect_default_layout(sut.get_nm_user_data_config());
    EXPECT_THAT(sut.get_nm_request_pattern(), IsEmpty());
    EXPECT_EQ(sut.get_max_apps_ecualive(), 0U);
    EXPECT_THAT(sut.get_apps_ecualive(), IsEmpty());
    EXPECT_EQ(sut.get_max_apps_comalive(), 0U);
    EXPECT_THAT(sut.get_apps_comalive(), IsEmpty());
    EXPECT_EQ(sut.get_max_apps_cwu(), 0U);
    EXPECT_THAT(sut.get_apps_cwu(), IsEmpty());
    EXPECT_EQ(sut.get_app_timeout(), 60U);
    EXPECT_EQ(sut.get_dm_timeout(), 60U);
    EXPECT_EQ(sut.get_pm_timeout(), 60U);
    EXPECT_EQ(sut.get_alive_supervision_instance_id(), "");
}

TEST(State_manager_config, Every_setter_writes_its_own_field) {
    State_manager_config sut;

    sut.set_knockout_timer(101);
    sut.set_nm_usage(false);
    sut.set_request_network_on_entry_run_state(false);
    sut.set_main_function_period(102);
    sut.set_smw_update_status_path("status");
    sut.set_smw_restart_command_path("command");
    sut.set_nm_request_pattern({1, 2});
    sut.set_max_apps_ecualive(103);
    sut.set_max_apps_comalive(104);
    sut.set_max_apps_cwu(105);
    sut.set_app_timeout(106);
    sut.set_dm_timeout(107);
    sut.set_pm_timeout(108);
    sut.set_alive_supervision_instance_id("supervision");

    EXPECT_EQ(sut.get_knockout_timer(), 101U);
    EXPECT_FALSE(sut.is_nm_usage_allowed());
    EXPECT_FALSE(sut.is_request_network_on_entry_run_state_requested());
    EXPECT_EQ(sut.get_main_function_period(), 102U);
    EXPECT_EQ(sut.get_smw_update_status_path(), "status");
    EXPECT_EQ(sut.get_smw_restart_command_path(), "command");
    EXPECT_THAT(sut.get_nm_request_pattern(), ElementsAre(1, 2));
    EXPECT_EQ(sut.get_max_apps_ecualive(), 103U);
    EXPECT_EQ(sut.get_max_apps_comalive(), 104U);
    EXPECT_EQ(sut.get_max_apps_cwu(), 105U);
    EXPECT_EQ(sut.get_app_timeout(), 106U);
    EXPECT_EQ(sut.get_dm_timeout(), 107U);
    EXPECT_EQ(sut.get_pm_timeout(), 108U);
    EXPECT_EQ(sut.get_alive_supervision_instance_id(), "supervision");
}

TEST(State_manager_config, NM_usage_and_the_network_request_on_entry_are_told_apart) {
    State_manager_config sut;

    sut.set_nm_usage(false);

    EXPECT_FALSE(sut.is_nm_usage_allowed());
    EXPECT_TRUE(sut.is_request_network_on_entry_run_state_requested());
}

TEST(State_manager_config, A_new_request_pattern_replaces_the_old_one_whole) {
    State_manager_config sut;
    sut.set_nm_request_pattern({1, 2, 3});

    sut.set_nm_request_pattern({9});

    EXPECT_THAT(sut.get_nm_request_pattern(), ElementsAre(9));
}

TEST(State_manager_config, A_request_pattern_is_a_copy_that_its_reader_owns) {
    State_manager_config sut;
    sut.set_nm_request_pattern({1});

    auto pattern = sut.get_nm_request_pattern();
    pattern[0] = 2;

    EXPECT_THAT(sut.get_nm_request_pattern(), ElementsAre(1));
}

/// One of the three lists of service instances.
struct Instance_list {
    char const* name;
    bool (State_manager_config::*add)(std::string);
    void (State_manager_config::*set_maximum)(unsigned int);
    std::vector<std::string> const& (State_manager_config::*get)() const;
};

class An_instance_list : public testing::TestWithParam<Instance_list> {
 protected:
    bool add(std::string instance) { return (sut_.*GetParam().add)(std::move(instance)); }
    void set_maximum(unsigned int maximum) { (sut_.*GetParam().set_maximum)(maximum); }
    std::vector<std::string> const& list() const { return (sut_.*GetParam().get)(); }
    State_manager_config const& sut() const { return sut_; }

 private:
    State_manager_config sut_;
};

TEST_P(An_instance_list, Takes_nothing_before_its_maximum_is_set) {
    EXPECT_FALSE(add("1"));
    EXPECT_THAT(list(), IsEmpty());
}

TEST_P(An_instance_list, Takes_as_many_as_its_maximum_in_order_and_no_more) {
    set_maximum(2);

    EXPECT_TRUE(add("second"));
    EXPECT_TRUE(add("first"));
    EXPECT_FALSE(add("third"));

    EXPECT_THAT(list(), ElementsAre("second", "first"));
}

TEST_P(An_instance_list, Does_not_detect_duplicates) {
    set_maximum(3);

    EXPECT_TRUE(add("1"));
    EXPECT_TRUE(add("1"));

    EXPECT_THAT(list(), ElementsAre("1", "1"));
}

TEST_P(An_instance_list, Keeps_what_it_has_when_the_maximum_shrinks_and_takes_no_more) {
    set_maximum(2);
    add("1");
    add("2");

    set_maximum(1);

    EXPECT_FALSE(add("3"));
    EXPECT_THAT(list(), ElementsAre("1", "2"));
}

TEST_P(An_instance_list, Takes_an_empty_name) {
    set_maximum(k_largest);

    EXPECT_TRUE(add(""));
    EXPECT_THAT(list(), ElementsAre(""));
}

TEST_P(An_instance_list, Is_the_only_one_that_its_operations_touch) {
    set_maximum(1);
    add("1");

    EXPECT_EQ(sut().get_apps_ecualive().size() + sut().get_apps_comalive().size() + sut().get_apps_cwu().size(), 1U);
    EXPECT_EQ(sut().get_max_apps_ecualive() + sut().get_max_apps_comalive() + sut().get_max_apps_cwu(), 1U);
}

INSTANTIATE_TEST_SUITE_P(Config, An_instance_list,
                         testing::Values(Instance_list{"ecu_alive", &State_manager_config::add_apps_ecualive,
                                                       &State_manager_config::set_max_apps_ecualive,
                                                       &State_manager_config::get_apps_ecualive},
                                         Instance_list{"com_alive", &State_manager_config::add_apps_comalive,
                                                       &State_manager_config::set_max_apps_comalive,
                                                       &State_manager_config::get_apps_comalive},
                                         Instance_list{"cwu", &State_manager_config::add_apps_cwu,
                                                       &State_manager_config::set_max_apps_cwu,
                                                       &State_manager_config::get_apps_cwu}),
                         [](auto const& list) { return list.param.name; });

/// A layout of the NM user data, as UserDataBytes, CWUBitPosition, ACOffset, ACBytes, CABOffset, CABBytes,
/// MaxCABSizeBits, CabBitsEnabled.
struct Layout_case {
    char const* name;
    Nm_user_data_config layout;
    bool accepted;
};

class A_layout : public testing::TestWithParam<Layout_case> {};

TEST_P(A_layout, Is_stored_whole_or_refused_whole) {
    State_manager_config sut;

    EXPECT_EQ(sut.set_nm_user_data_config(GetParam().layout), GetParam().accepted);

    auto const stored = sut.get_nm_user_data_config();
    if (!GetParam().accepted) {
        expect_default_layout(stored);
        return;
    }
    EXPECT_EQ(stored.user_data_bytes, GetParam().layout.user_data_bytes);
    EXPECT_EQ(stored.cwu_bit_position, GetParam().layout.cwu_bit_position);
    EXPECT_EQ(stored.ac_offset, GetParam().layout.ac_offset);
    EXPECT_EQ(stored.ac_bytes, GetParam().layout.ac_bytes);
    EXPECT_EQ(stored.cab_offset, GetParam().layout.cab_offset);
    EXPECT_EQ(stored.cab_bytes, GetParam().layout.cab_bytes);
    EXPECT_EQ(stored.max_cab_size_bits, GetParam().layout.max_cab_size_bits);
    EXPECT_EQ(stored.cab_bits_enabled, GetParam().layout.cab_bits_enabled);
}

INSTANTIATE_TEST_SUITE_P(
    Config, A_layout,
    testing::Values(Layout_case{"of_the_defaults", {6, 6, 1, 2, 3, 3, 24, false}, true},
                    Layout_case{"that_fills_every_bound_exactly", {10, 7, 2, 3, 5, 5, 40, true}, true},
                    Layout_case{"with_room_everywhere", {20, 8, 0, 1, 4, 4, 5, true}, true},
                    Layout_case{"of_nothing", {0, 0, 0, 0, 0, 0, 0, false}, true},
                    Layout_case{"whose_AC_area_runs_one_byte_into_the_CAB_area", {6, 6, 1, 3, 3, 3, 24, false}, false},
                    Layout_case{"whose_CAB_area_starts_one_byte_too_early", {6, 6, 1, 2, 2, 3, 24, false}, false},
                    Layout_case{
                        "whose_CAB_area_ends_one_byte_after_the_user_data", {6, 6, 1, 2, 3, 4, 24, false}, false},
                    Layout_case{"that_is_one_byte_too_short", {5, 6, 1, 2, 3, 3, 24, false}, false},
                    Layout_case{"with_one_CAB_bit_too_many", {6, 6, 1, 2, 3, 3, 25, false}, false},
                    Layout_case{"whose_CWU_bit_lies_outside", {6, 4711, 1, 2, 3, 3, 24, true}, true},
                    Layout_case{"whose_AC_sum_wraps", {6, 6, k_largest, 2, 3, 3, 24, false}, true},
                    Layout_case{"whose_CAB_sum_wraps", {6, 6, 1, 2, k_largest, 3, 24, false}, true},
                    Layout_case{"whose_CAB_bits_wrap", {k_largest, 6, 1, 2, 3, 0x20000000, 1, false}, false}),
    [](auto const& layout) { return layout.param.name; });

TEST(State_manager_config, A_refused_layout_leaves_the_layout_before_it_in_force) {
    State_manager_config sut;
    sut.set_nm_user_data_config({10, 7, 2, 3, 5, 5, 40, true});

    sut.set_nm_user_data_config({1, 1, 1, 1, 1, 1, 1, false});

    EXPECT_EQ(sut.get_nm_user_data_config().user_data_bytes, 10U);
    EXPECT_TRUE(sut.get_nm_user_data_config().cab_bits_enabled);
}

}  // namespace
}  // namespace ximo::ap::statemanager::config
