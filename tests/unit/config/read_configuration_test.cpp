#include "statemanager/config/state_manager_json_parser.h"
#include "support/log_capture.h"
#include "unit/config/complete_configuration.h"

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>

namespace ximo::ap::statemanager::config {
namespace {

using ara::log::LogLevel;
using nlohmann::json;
using test_support::complete_configuration;
using test_support::Log_capture;
using test_support::Log_message;
using test_support::logged;
using test_support::reason;
using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

bool read(json const& root, State_manager_config& config) {
    return State_manager_json_parser::read_state_manager_configuration(root, config);
}

bool read(json const& root) {
    State_manager_config config;
    return read(root, config);
}

Log_message missing(std::string const& key) {
    return logged(LogLevel::kInfo, "State_manager_json_parser:", "Missing ", key, "in configuration.", "caused by",
                  reason([&] { json::object().at(key); }));
}

Log_message get(std::string const& key, std::string const& value) {
    return logged(LogLevel::kVerbose, "State_manager_json_parser: Get ", key,
                  " form configuration with value: ", value);
}

Log_message found(std::string const& key) {
    return logged(LogLevel::kVerbose, "State_manager_json_parser: Found ", key);
}

Log_message problem(std::string const& text) {
    return logged(LogLevel::kDebug, "State_manager_json_parser:", text);
}

TEST(Read_configuration, Every_member_reaches_its_setting) {
    State_manager_config config;

    ASSERT_TRUE(read(complete_configuration(), config));

    EXPECT_EQ(config.get_knockout_timer(), 7U);
    EXPECT_FALSE(config.is_nm_usage_allowed());
    EXPECT_FALSE(config.is_request_network_on_entry_run_state_requested());
    EXPECT_EQ(config.get_main_function_period(), 250U);
    EXPECT_EQ(config.get_app_timeout(), 11U);
    EXPECT_EQ(config.get_dm_timeout(), 12U);
    EXPECT_EQ(config.get_pm_timeout(), 13U);
    EXPECT_EQ(config.get_alive_supervision_instance_id(), "supervision/1");
    EXPECT_EQ(config.get_smw_update_status_path(), "/tmp/status");
    EXPECT_EQ(config.get_smw_restart_command_path(), "/tmp/command");
    EXPECT_THAT(config.get_nm_request_pattern(), ElementsAre(65, 0, 255));
    EXPECT_EQ(config.get_max_apps_ecualive(), 3U);
    EXPECT_THAT(config.get_apps_ecualive(), ElementsAre("a1", "a2"));
    EXPECT_EQ(config.get_max_apps_comalive(), 4U);
    EXPECT_THAT(config.get_apps_comalive(), ElementsAre("n1"));
    EXPECT_EQ(config.get_max_apps_cwu(), 5U);
    EXPECT_THAT(config.get_apps_cwu(), ElementsAre("c1", "c2"));
}

TEST(Read_configuration, Everything_read_is_logged_in_the_order_of_reading) {
    Log_capture log;

    read(complete_configuration());

    std::vector<Log_message> const expected{
        logged(LogLevel::kVerbose, "State_manager_json_parser: Parsing State Manager configuration"),
        get("KnockOutTimer", "7"),
        get("StateManagerNMUsage", "false"),
        get("RequestNetworkOnEntryRunState", "false"),
        get("StateManagerMainPeriod", "250"),
        get("ApplicationSuspendRequestTimeout", "11"),
        get("DMSuspendRequestTimeout", "12"),
        get("PMSuspendRequestTimeout", "13"),
        get("AliveSupervisionInstanceId", "supervision/1"),
        found("SharedMemoryConfig"),
        get("UpdateStatusFile", "/tmp/status"),
        get("RestartCommandFile", "/tmp/command"),
        found("NmUserDataConfig"),
        get("UserDataBytes", "8"),
        get("CWUBitPosition", "5"),
        get("ACOffset", "2"),
        get("ACBytes", "1"),
        get("CABOffset", "4"),
        get("CABBytes", "2"),
        get("MaxCABSizeBits", "15"),
        get("CabBitsEnabled", "true"),
        get("DefautNMRequestPattern", std::string("A \0 \xff ", 6)),
        get("MaxNumberOfApplicationsRequestAlive", "3"),
        found("ApplicationsRequestAliveConfig"),
        get("EcuAliveInterfaceInstance", "a1"),
        get("EcuAliveInterfaceInstance", "a2"),
        get("MaxNumberOfApplicationsRequestNetwork", "4"),
        found("ApplicationsRequestNetworkConfig"),
        get("NetworkAliveInterfaceInstance", "n1"),
        get("MaxNumberOfCWURequest", "5"),
        found("CWURequestConfig"),
        get("CWUInterfaceInstance", "c1"),
        get("CWUInterfaceInstance", "c2"),
    };
    EXPECT_THAT(log.messages(), ElementsAreArray(expected));
}

/// A member that can't do without, and one that is read just before it; empty for the first.
struct Required {
    char const* key;
    json wrong;
};

void PrintTo(Required const& member, std::ostream* out) {
    *out << member.key;
}

class A_required_member : public testing::TestWithParam<Required> {};

TEST_P(A_required_member, Fails_the_reading_at_once_when_it_is_missing) {
    Log_capture log;
    auto root = complete_configuration();
    root.erase(GetParam().key);

    EXPECT_FALSE(read(root));

    EXPECT_EQ(log.messages().back(), missing(GetParam().key));
}

TEST_P(A_required_member, Fails_the_reading_at_once_when_it_is_of_another_type) {
    Log_capture log;
    auto root = complete_configuration();
    root[GetParam().key] = GetParam().wrong;

    EXPECT_FALSE(read(root));

    auto const last = log.messages().back();
    EXPECT_EQ(last.level, LogLevel::kDebug);
    ASSERT_EQ(last.arguments.size(), 3U);
    EXPECT_EQ(last.arguments[0], test_support::Log_argument("State_manager_json_parser:"));
    EXPECT_EQ(last.arguments[1], test_support::Log_argument("Incorrect key type: "));
}

INSTANTIATE_TEST_SUITE_P(
    Config, A_required_member,
    testing::Values(Required{"KnockOutTimer", "3"}, Required{"StateManagerNMUsage", 1},
                    Required{"RequestNetworkOnEntryRunState", "true"}, Required{"StateManagerMainPeriod", true},
                    Required{"ApplicationSuspendRequestTimeout", nullptr},
                    Required{"DMSuspendRequestTimeout", json::array()}, Required{"PMSuspendRequestTimeout", "60"},
                    Required{"AliveSupervisionInstanceId", 1}, Required{"DefautNMRequestPattern", "00"},
                    Required{"MaxNumberOfApplicationsRequestAlive", "2"},
                    Required{"MaxNumberOfApplicationsRequestNetwork", false},
                    Required{"MaxNumberOfCWURequest", json::object()}),
    [](auto const& member) { return member.param.key; });

TEST(Read_configuration, What_was_read_before_a_failure_stays_and_nothing_after_it_is_read) {
    State_manager_config config;
    auto root = complete_configuration();
    root.erase("StateManagerMainPeriod");

    EXPECT_FALSE(read(root, config));

    EXPECT_EQ(config.get_knockout_timer(), 7U);
    EXPECT_FALSE(config.is_request_network_on_entry_run_state_requested());
    EXPECT_EQ(config.get_main_function_period(), 100U);
    EXPECT_EQ(config.get_app_timeout(), 60U);
    EXPECT_EQ(config.get_smw_update_status_path(), "/sys/vmctl/set_status");
    EXPECT_THAT(config.get_apps_cwu(), IsEmpty());
}

TEST(Read_configuration, The_request_pattern_is_found_only_under_its_own_spelling) {
    Log_capture log;
    auto root = complete_configuration();
    root["DefaultNMRequestPattern"] = root["DefautNMRequestPattern"];
    root.erase("DefautNMRequestPattern");

    EXPECT_FALSE(read(root));

    EXPECT_EQ(log.messages().back(), missing("DefautNMRequestPattern"));
}

TEST(Read_configuration, An_empty_request_pattern_is_accepted) {
    State_manager_config config;
    auto root = complete_configuration();
    root["DefautNMRequestPattern"] = json::array();

    EXPECT_TRUE(read(root, config));

    EXPECT_THAT(config.get_nm_request_pattern(), IsEmpty());
}

TEST(Read_configuration, A_negative_or_fractional_number_is_converted) {
    State_manager_config config;
    auto root = complete_configuration();
    root["KnockOutTimer"] = -1;
    root["StateManagerMainPeriod"] = 99.9;

    EXPECT_TRUE(read(root, config));

    EXPECT_EQ(config.get_knockout_timer(), 4294967295U);
    EXPECT_EQ(config.get_main_function_period(), 99U);
}

TEST(Read_configuration, Unknown_members_are_ignored) {
    auto root = complete_configuration();
    root["Comment"] = "the whole truth";

    EXPECT_TRUE(read(root));
}

TEST(Read_configuration, A_null_object_fails_at_the_first_key) {
    Log_capture log;
    json const root;

    EXPECT_FALSE(read(root));

    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kVerbose,
                                                   "State_manager_json_parser: Parsing State Manager configuration"),
                                            logged(LogLevel::kDebug, "State_manager_json_parser:",
                                                   "Incorrect key type: ", reason([&] { root.at("KnockOutTimer"); }))));
}

TEST(Read_configuration, VM_control_files_that_are_not_set_keep_their_default_paths) {
    for (auto const& section : {json(), json::object(), json::array()}) {
        Log_capture log;
        State_manager_config config;
        auto root = complete_configuration();
        root["SharedMemoryConfig"] = section;

        EXPECT_TRUE(read(root, config));

        EXPECT_EQ(config.get_smw_update_status_path(), "/sys/vmctl/set_status");
        EXPECT_EQ(config.get_smw_restart_command_path(), "/sys/vmctl/command_request");
        EXPECT_THAT(log.messages(), Contains(problem("SharedMemoryConfig  not set in configuration file!")));
    }
}

TEST(Read_configuration, A_missing_VM_control_section_is_logged_as_missing_and_as_not_set) {
    Log_capture log;
    auto root = complete_configuration();
    root.erase("SharedMemoryConfig");

    EXPECT_TRUE(read(root));

    EXPECT_THAT(
        log.at_least(LogLevel::kDebug),
        ElementsAre(missing("SharedMemoryConfig"), problem("SharedMemoryConfig  not set in configuration file!")));
}

TEST(Read_configuration, Both_VM_control_files_are_required_when_one_is_named) {
    for (auto const* key : {"UpdateStatusFile", "RestartCommandFile"}) {
        Log_capture log;
        auto root = complete_configuration();
        root["SharedMemoryConfig"].erase(key);

        EXPECT_FALSE(read(root));

        EXPECT_EQ(log.messages().back(), missing(key));
    }
}

TEST(Read_configuration, The_status_file_stays_set_when_the_command_file_is_missing) {
    State_manager_config config;
    auto root = complete_configuration();
    root["SharedMemoryConfig"].erase("RestartCommandFile");

    EXPECT_FALSE(read(root, config));

    EXPECT_EQ(config.get_smw_update_status_path(), "/tmp/status");
}

TEST(Read_configuration, A_VM_control_section_that_is_no_object_fails) {
    auto root = complete_configuration();
    root["SharedMemoryConfig"] = "/sys/vmctl";

    EXPECT_FALSE(read(root));
}

}  // namespace
}  // namespace ximo::ap::statemanager::config
