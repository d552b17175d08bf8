#include "simulation/configuration.h"

#include "simulation/life.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string_view>

namespace simulation {

namespace {

using nlohmann::json;

constexpr char const* k_root = "ap_statemanager";

// The example configuration, with network management.
constexpr char const* k_built_in = R"({
    "KnockOutTimer": 3, "StateManagerNMUsage": true, "RequestNetworkOnEntryRunState": true,
    "StateManagerMainPeriod": 100, "ApplicationSuspendRequestTimeout": 60, "DMSuspendRequestTimeout": 60,
    "PMSuspendRequestTimeout": 60, "AliveSupervisionInstanceId": "ap_statemanager",
    "SharedMemoryConfig": {"UpdateStatusFile": "/sys/vmctl/set_status",
                           "RestartCommandFile": "/sys/vmctl/command_request"},
    "NmUserDataConfig": {"UserDataBytes": 6, "CWUBitPosition": 6, "ACOffset": 1, "ACBytes": 2, "CABOffset": 3,
                         "CABBytes": 3, "MaxCABSizeBits": 24, "CabBitsEnabled": false},
    "DefautNMRequestPattern": [0, 0, 0, 0, 0, 0],
    "MaxNumberOfApplicationsRequestAlive": 0, "ApplicationsRequestAliveConfig": [],
    "MaxNumberOfApplicationsRequestNetwork": 0, "ApplicationsRequestNetworkConfig": [],
    "MaxNumberOfCWURequest": 0, "CWURequestConfig": []})";

// An empty list is refused.
void add_instances(json& settings, std::set<std::string> names, char const* most, char const* list,
                   char const* member) {
    if (names.empty()) {
        names.insert("1");
    }
    settings[most] = names.size();
    for (auto const& name : names) {
        settings[list].push_back({{member, name}});
    }
}

json built_in_for(Script const& script) {
    auto settings = json::parse(k_built_in);
    add_instances(settings, script.ecu, "MaxNumberOfApplicationsRequestAlive", "ApplicationsRequestAliveConfig",
                  "EcuAliveInterfaceInstance");
    add_instances(settings, script.com, "MaxNumberOfApplicationsRequestNetwork", "ApplicationsRequestNetworkConfig",
                  "NetworkAliveInterfaceInstance");
    add_instances(settings, script.wake_up, "MaxNumberOfCWURequest", "CWURequestConfig", "CWUInterfaceInstance");
    return settings;
}

void set(json& settings, Script::Setting const& setting) {
    constexpr std::string_view k_name = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz.";
    bool const is_name = setting.key.find_first_not_of(k_name) == std::string::npos;
    auto path = "/" + setting.key;
    std::replace(path.begin(), path.end(), '.', '/');
    json::json_pointer const place(is_name ? path : std::string());
    if (!is_name || !json::parse(k_built_in).contains(place)) {
        throw Script_error(setting.line, setting.key_column, "there is no setting \"" + setting.key + '"');
    }
    auto const value = json::parse(setting.value, nullptr, false);
    if (value.is_discarded()) {
        throw Script_error(setting.line, setting.value_column, "the value of " + setting.key + " is not JSON");
    }
    try {
        settings[place] = value;
    } catch (json::exception const&) {  // what it would be in is something else
        throw Script_error(setting.line, setting.key_column, "the configuration has no place for " + setting.key);
    }
}

std::string line_and_column(std::string const& file, std::size_t at) {
    auto const read = file.substr(0, at);
    return "line " + std::to_string(1 + std::count(read.begin(), read.end(), '\n')) + ", column " +
           std::to_string(read.size() - (read.rfind('\n') + 1) + 1);
}

json parsed(std::string const& file) {
    try {
        return json::parse(file);
    } catch (json::parse_error const& error) {
        auto const at = std::max<std::size_t>(error.byte, 1) - 1;
        throw std::runtime_error("it is no JSON from " + line_and_column(file, at) + " on");
    }
}

std::string text_of(json const& root) {
    return root.dump(-1, ' ', false, json::error_handler_t::replace);
}

/// Why the daemon refuses it, when it reads it or when it starts; empty where it takes it.
std::string refusal_of(json const& root) {
    try {
        Life({text_of(root)}).run(Time(0));
    } catch (std::exception const& error) {
        return error.what();
    }
    return "";
}

json with(json const& base, std::vector<Script::Setting> const& settings, std::size_t from) {
    auto root = base;
    for (; from < settings.size(); ++from) {
        set(root[k_root], settings[from]);
    }
    return root;
}

/// Settings are left out one after the other: the last one that it takes to be taken is to blame.
[[noreturn]] void blame_a_setting(json const& base, std::vector<Script::Setting> const& settings, std::string why) {
    for (std::size_t left_out = 0;; ++left_out) {
        auto next = refusal_of(with(base, settings, left_out + 1));
        if (next.empty()) {
            auto const& blamed = settings[left_out];
            throw Script_error(blamed.line, blamed.value_column, blamed.key + ": " + why);
        }
        why = std::move(next);
    }
}

/// " in line 3, column 5"; empty for a member that is missing.
std::string place_of(std::string const& member, std::string const& file) {
    auto const quoted = '"' + member + '"';
    for (auto at = file.rfind(quoted); at != std::string::npos && at != 0; at = file.rfind(quoted, at - 1)) {
        auto const next = file.find_first_not_of(" \t\r\n", at + quoted.size());
        if (next != std::string::npos && file[next] == ':') {
            return " in " + line_and_column(file, at);
        }
    }
    return "";
}

/// Members are replaced by good ones, one after the other: the last one that it takes to be taken is to blame.
[[noreturn]] void blame_a_member(json root, std::string const& file, std::string why) {
    auto const replace = [&](json::json_pointer const& place, json const& value, std::string const& name) {
        root[place] = value;
        auto next = refusal_of(root);
        if (next.empty()) {
            throw std::runtime_error(name + place_of(place.back(), file) + ": " + why);
        }
        why = std::move(next);
    };
    auto const good = built_in_for({});
    for (auto const& [name, value] : good.items()) {
        auto const place = json::json_pointer() / k_root / name;
        if (!value.is_object() || !root.contains(place) || !root[place].is_object()) {
            replace(place, value, name);
            continue;
        }
        for (auto const& [inner, inner_value] : value.items()) {
            replace(place / inner, inner_value, std::string(name).append(".").append(inner));
        }
    }
    throw std::runtime_error(why);
}

}  // namespace

std::string configuration_of(Script const& script, std::optional<std::string> const& file) {
    json root{{k_root, built_in_for(script)}};
    if (file) {
        root = parsed(*file);
        if (!root.is_object() || !root.contains(k_root) || !root[k_root].is_object()) {
            throw std::runtime_error("the configuration is no JSON object with a member \"ap_statemanager\"");
        }
    }
    auto configuration = with(root, script.settings, 0);
    if (auto const why = refusal_of(configuration); !why.empty()) {
        auto const why_without_settings = refusal_of(root);
        if (file && !why_without_settings.empty()) {
            blame_a_member(root, *file, why_without_settings);
        }
        blame_a_setting(root, script.settings, why);
    }
    return text_of(configuration);
}

}  // namespace simulation
