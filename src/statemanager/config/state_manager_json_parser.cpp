#include "statemanager/config/state_manager_json_parser.h"

#include "ara/log/logging.h"
#include "statemanager/config/configuration_file.h"
#include "statemanager/config/get_and_set.h"
#include "statemanager/config/json_conversion.h"

#include <exception>
#include <functional>
#include <nlohmann/json.hpp>
#include <utility>

namespace ximo::ap::statemanager::config {
namespace {

using nlohmann::json;
using Bytes = std::vector<std::uint8_t>;

void log_problem(char const* text) {
    ara::log::LogDebug() << "State_manager_json_parser:" << text;
}

// The setter of `config` that a member goes to: `to(config, &State_manager_config::set_nm_usage)`.
template <class Value>
std::function<void(Value)> to(State_manager_config& config, void (State_manager_config::*setter)(Value)) {
    return [&config, setter](Value value) { (config.*setter)(std::move(value)); };
}

template <class Value>
std::function<void(Value)> to(Value& target) {
    return [&target](Value value) { target = std::move(value); };
}

bool read_state_machine(json const& root, State_manager_config& config) {
    using Config = State_manager_config;
    return get_and_set(root, "KnockOutTimer", to(config, &Config::set_knockout_timer)) &&
           get_and_set(root, "StateManagerNMUsage", to(config, &Config::set_nm_usage)) &&
           get_and_set(root, "RequestNetworkOnEntryRunState",
                       to(config, &Config::set_request_network_on_entry_run_state)) &&
           get_and_set(root, "StateManagerMainPeriod", to(config, &Config::set_main_function_period)) &&
           get_and_set(root, "ApplicationSuspendRequestTimeout", to(config, &Config::set_app_timeout)) &&
           get_and_set(root, "DMSuspendRequestTimeout", to(config, &Config::set_dm_timeout)) &&
           get_and_set(root, "PMSuspendRequestTimeout", to(config, &Config::set_pm_timeout)) &&
           get_and_set(root, "AliveSupervisionInstanceId", to(config, &Config::set_alive_supervision_instance_id));
}

bool read_vm_control_files(json const& root, State_manager_config& config) {
    auto const section = State_manager_json_parser::get_json_object(root, "SharedMemoryConfig");
    if (section.empty()) {
        log_problem("SharedMemoryConfig  not set in configuration file!");
        return true;
    }
    return get_and_set(section, "UpdateStatusFile", to(config, &State_manager_config::set_smw_update_status_path)) &&
           get_and_set(section, "RestartCommandFile", to(config, &State_manager_config::set_smw_restart_command_path));
}

// Members that are missing or of another type keep their default.
Nm_user_data_config read_layout(json const& section) {
    Nm_user_data_config layout;
    get_and_set(section, "UserDataBytes", to(layout.user_data_bytes));
    get_and_set(section, "CWUBitPosition", to(layout.cwu_bit_position));
    get_and_set(section, "ACOffset", to(layout.ac_offset));
    get_and_set(section, "ACBytes", to(layout.ac_bytes));
    get_and_set(section, "CABOffset", to(layout.cab_offset));
    get_and_set(section, "CABBytes", to(layout.cab_bytes));
    get_and_set(section, "MaxCABSizeBits", to(layout.max_cab_size_bits));
    get_and_set(section, "CabBitsEnabled", to(layout.cab_bits_enabled));
    return layout;
}

bool read_nm_user_data(json const& root, State_manager_config& config) {
    auto const section = State_manager_json_parser::get_json_object(root, "NmUserDataConfig");
    if (section.empty()) {
        log_problem("NmUserDataConfig  not set in configuration file!");
        return true;
    }
    if (!config.set_nm_user_data_config(read_layout(section))) {
        log_problem("Inncorect configuration of NmUserDataConfig!");
        return false;
    }
    return true;
}

/// One list of service instances: what the file calls it and where it goes.
struct Instance_list {
    char const* maximum;
    void (State_manager_config::*set_maximum)(unsigned int);
    char const* section;
    char const* not_set;
    char const* member;
    bool (State_manager_config::*add)(std::string);
    char const* exceeded;
};

constexpr Instance_list k_ecu_alive{"MaxNumberOfApplicationsRequestAlive",
                                    &State_manager_config::set_max_apps_ecualive,
                                    "ApplicationsRequestAliveConfig",
                                    "ApplicationsRequestAliveConfig not set in configuration file!",
                                    "EcuAliveInterfaceInstance",
                                    &State_manager_config::add_apps_ecualive,
                                    "MaxNumberOfApplicationsRequestAlive exceeded! Interface not added!"};

constexpr Instance_list k_com_alive{"MaxNumberOfApplicationsRequestNetwork",
                                    &State_manager_config::set_max_apps_comalive,
                                    "ApplicationsRequestNetworkConfig",
                                    "ApplicationsRequestNetworkConfig not set in configuration file!",
                                    "NetworkAliveInterfaceInstance",
                                    &State_manager_config::add_apps_comalive,
                                    "MaxNumberOfApplicationsRequestNetwork exceeded! Interface not added!"};

constexpr Instance_list k_car_wake_up{"MaxNumberOfCWURequest",
                                      &State_manager_config::set_max_apps_cwu,
                                      "CWURequestConfig",
                                      "CWURequestConfig not set in configuration file!",
                                      "CWUInterfaceInstance",
                                      &State_manager_config::add_apps_cwu,
                                      "MaxNumberOfCWURequest exceeded! Interface not added!"};

// An instance without a name is logged and left out; the others are still added.
bool read_instances(json const& root, State_manager_config& config, Instance_list const& list) {
    if (!get_and_set(root, list.maximum, to(config, list.set_maximum))) {
        return false;
    }
    auto const section = State_manager_json_parser::get_json_object(root, list.section);
    if (section.empty()) {
        log_problem(list.not_set);
        return false;
    }
    std::function<void(std::string)> const add = [&](std::string instance) {
        if (!(config.*list.add)(std::move(instance))) {
            ara::log::LogWarn() << "State_manager_json_parser:" << list.exceeded;
        }
    };
    for (auto const& element : section) {
        get_and_set(element, list.member, add);
    }
    return true;
}

bool read_file(Configuration_file const& file, State_manager_config& config) {
    auto const document = parse_document(file.read());
    auto const root = State_manager_json_parser::get_json_object(document, "ap_statemanager");
    return State_manager_json_parser::read_state_manager_configuration(root, config);
}

}  // namespace

bool State_manager_json_parser::parse(std::string const& path, State_manager_config& config) {
    ara::log::LogInfo() << "Parsing configuration file:" << path;
    Configuration_file const file(path);
    if (!file.is_open()) {
        ara::log::LogFatal() << "Configuration file could NOT be opened! Path: " << path;
        return false;
    }
    try {
        return read_file(file, config);
    } catch (std::exception const& error) {
        ara::log::LogFatal() << "Failed to parse configuration: " << error.what();
    }
    return false;
}

bool State_manager_json_parser::read_state_manager_configuration(json const& root, State_manager_config& config) {
    ara::log::LogVerbose() << "State_manager_json_parser: Parsing State Manager configuration";
    return read_state_machine(root, config) && read_vm_control_files(root, config) && read_nm_user_data(root, config) &&
           get_and_set(root, "DefautNMRequestPattern", to(config, &State_manager_config::set_nm_request_pattern)) &&
           read_instances(root, config, k_ecu_alive) && read_instances(root, config, k_com_alive) &&
           read_instances(root, config, k_car_wake_up);
}

json State_manager_json_parser::get_json_object(json const& parent, std::string const& key) {
    try {
        auto const& member = parent.at(key);
        ara::log::LogVerbose() << "State_manager_json_parser: Found " << key;
        return member;
    } catch (json::out_of_range const& error) {
        log_missing(key, error.what());
        return nullptr;
    }
}

}  // namespace ximo::ap::statemanager::config
