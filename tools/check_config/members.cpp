#include "tools/check_config/members.h"

#include <algorithm>
#include <iterator>

namespace statectl::check_config {

namespace {

using nlohmann::json;
using nlohmann::ordered_json;

constexpr char const* k_top = "";
constexpr char const* k_files = "SharedMemoryConfig";
constexpr char const* k_layout = "NmUserDataConfig";

// The daemon's value of a setting: `of<&Config::get_dm_timeout>`, `of_layout<&Layout::ac_bytes>`.
template <auto Getter>
json of(Config const& config) {
    return (config.*Getter)();
}

using Layout = ximo::ap::statemanager::config::Nm_user_data_config;

template <auto Field>
json of_layout(Config const& config) {
    return config.get_nm_user_data_config().*Field;
}

Member plain(char const* name, Kind kind, char const* meaning, json (*value)(Config const&),
             ordered_json const& keywords = ordered_json::object()) {
    return {k_top, name, kind, true, meaning, value, nullptr, nullptr, keywords};
}

Member file(char const* name, char const* meaning, json (*value)(Config const&)) {
    ordered_json const absolute{{"pattern", "^/.*[^/]$"}};
    return {k_files, name, Kind::text, true, meaning, value, nullptr, nullptr, absolute};
}

Member layout(char const* name, Kind kind, char const* meaning, json (*value)(Config const&),
              ordered_json const& keywords = ordered_json::object()) {
    return {k_layout, name, kind, false, meaning, value, nullptr, nullptr, keywords};
}

Member section(char const* name, char const* meaning) {
    return {k_top, name, Kind::section, false, meaning, nullptr, nullptr, nullptr, ordered_json::object()};
}

Member instances(char const* name, char const* element, char const* maximum, char const* meaning) {
    return {k_top, name, Kind::instances, true, meaning, nullptr, element, maximum, {{"uniqueItems", true}}};
}

// A time of 0 is none.
ordered_json some() {
    return {{"minimum", 1}};
}

// Bytes that network management carries, and that one area combines.
constexpr int k_longest = 1024;
constexpr int k_widest = 4;

}  // namespace

// clang-format off: one member a line
std::vector<Member> const& members() {
    static std::vector<Member> const all{
        plain("KnockOutTimer", Kind::number, "Cycles that Post Run waits for applications that keep the ECU alive",
              of<&Config::get_knockout_timer>),
        plain("StateManagerNMUsage", Kind::flag, "Whether network management is used",
              of<&Config::is_nm_usage_allowed>),
        plain("RequestNetworkOnEntryRunState", Kind::flag, "Whether entering Running requests the network",
              of<&Config::is_request_network_on_entry_run_state_requested>),
        plain("StateManagerMainPeriod", Kind::number, "Longest time that a cycle waits for a command, in milliseconds",
              of<&Config::get_main_function_period>, some()),
        plain("ApplicationSuspendRequestTimeout", Kind::number,
              "Time for all applications to answer a request, in seconds", of<&Config::get_app_timeout>, some()),
        plain("DMSuspendRequestTimeout", Kind::number,
              "Time for each diagnostic manager to answer a request, in seconds", of<&Config::get_dm_timeout>, some()),
        plain("PMSuspendRequestTimeout", Kind::number,
              "Time that a fast shutdown grants to the power-off service, in seconds", of<&Config::get_pm_timeout>,
              some()),
        plain("AliveSupervisionInstanceId", Kind::text, "Name under which the daemon reports to health management",
              of<&Config::get_alive_supervision_instance_id>),
        section(k_files, "The hypervisor's control files"),
        file("UpdateStatusFile", "File that gets a word for each state", of<&Config::get_smw_update_status_path>),
        file("RestartCommandFile", "File that gets the requests to restart", of<&Config::get_smw_restart_command_path>),
        section(k_layout, "Layout of the user data of network management"),
        layout("UserDataBytes", Kind::number, "Length of the user data, in bytes", of_layout<&Layout::user_data_bytes>,
               {{"maximum", k_longest}}),
        layout("CWUBitPosition", Kind::number, "Number of the car-wake-up bit", of_layout<&Layout::cwu_bit_position>),
        layout("ACOffset", Kind::number, "First byte of the AC area", of_layout<&Layout::ac_offset>),
        layout("ACBytes", Kind::number, "Bytes of the AC area", of_layout<&Layout::ac_bytes>, {{"maximum", k_widest}}),
        layout("CABOffset", Kind::number, "First byte of the CAB area", of_layout<&Layout::cab_offset>),
        layout("CABBytes", Kind::number, "Bytes of the CAB area", of_layout<&Layout::cab_bytes>,
               {{"maximum", k_widest}}),
        layout("MaxCABSizeBits", Kind::number, "Usable bits of the CAB area", of_layout<&Layout::max_cab_size_bits>),
        layout("CabBitsEnabled", Kind::flag, "Whether the CAB area is sent", of_layout<&Layout::cab_bits_enabled>),
        plain("DefautNMRequestPattern", Kind::bytes, "Bits with which the states request and release the network",
              of<&Config::get_nm_request_pattern>, {{"maxItems", k_longest}}),
        plain("MaxNumberOfApplicationsRequestAlive", Kind::number, "Most instances of ECU alive",
              of<&Config::get_max_apps_ecualive>),
        instances("ApplicationsRequestAliveConfig", "EcuAliveInterfaceInstance", "MaxNumberOfApplicationsRequestAlive",
                  "Applications that can keep the ECU alive"),
        plain("MaxNumberOfApplicationsRequestNetwork", Kind::number, "Most instances of COM alive",
              of<&Config::get_max_apps_comalive>),
        instances("ApplicationsRequestNetworkConfig", "NetworkAliveInterfaceInstance",
                  "MaxNumberOfApplicationsRequestNetwork", "Applications that can keep communication alive"),
        plain("MaxNumberOfCWURequest", Kind::number, "Most instances of car wake-up", of<&Config::get_max_apps_cwu>),
        instances("CWURequestConfig", "CWUInterfaceInstance", "MaxNumberOfCWURequest",
                  "Applications that can wake up the vehicle"),
    };
    return all;
}
// clang-format on

std::vector<Member> members_of(std::string const& section) {
    std::vector<Member> found;
    std::copy_if(members().begin(), members().end(), std::back_inserter(found),
                 [&](Member const& member) { return member.section == section; });
    return found;
}

std::string path_of(Member const& member) {
    return *member.section == '\0' ? member.name : std::string(member.section) + '.' + member.name;
}

json default_of(Member const& member) {
    return member.value == nullptr ? json() : member.value(Config());
}

}  // namespace statectl::check_config
