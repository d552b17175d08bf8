#include "simulation/play.h"

#include "simulation/report.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>

namespace simulation {

namespace {

using nlohmann::json;

constexpr char const* k_root = "ap_statemanager";

// A day of cycles of 50 ms, and more.
constexpr std::uint64_t k_most_cycles = 2'000'000;

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

json parsed(std::string const& file) {
    try {
        return json::parse(file);
    } catch (json::parse_error const& error) {
        auto const read = file.substr(0, std::max<std::size_t>(error.byte, 1) - 1);
        throw std::runtime_error("it is no JSON from line " +
                                 std::to_string(1 + std::count(read.begin(), read.end(), '\n')) + ", column " +
                                 std::to_string(read.size() - (read.rfind('\n') + 1) + 1) + " on");
    }
}

bool is_wanted(Script::Wanted const& wanted, Entry const& entry) {
    return entry.kind == wanted.kind && (wanted.who.empty() || wanted.who == entry.who) &&
           (wanted.what.empty() || wanted.what == entry.what);
}

Verdict judge_words(Script::Expectation const& expectation, Timeline const& timeline) {
    std::vector<std::string> words;
    std::string text;
    for (auto const& entry : timeline) {
        if (is_wanted({Kind::word, "written", ""}, entry)) {
            words.push_back(entry.what);
            text += (text.empty() ? "" : ", ") + entry.what;
        }
    }
    return {expectation, words == expectation.words, "they were " + text};
}

Verdict judge(Script::Expectation const& expectation, Timeline const& timeline) {
    if (expectation.kind == Script::Expectation::Kind::words) {
        return judge_words(expectation, timeline);
    }
    bool const is_absence = expectation.kind == Script::Expectation::Kind::none;
    std::string elsewhere;
    for (auto const& entry : timeline) {
        if (!is_wanted(expectation.wanted, entry)) {
            continue;
        }
        if (entry.at >= expectation.from && entry.at <= expectation.to) {
            return {expectation, !is_absence, "at " + seconds(entry.at)};
        }
        elsewhere += (elsewhere.empty() ? "only at " : ", ") + seconds(entry.at);
    }
    return {expectation, is_absence, elsewhere.empty() ? "never" : elsewhere};
}

}  // namespace

bool Outcome::is_kept() const {
    return std::all_of(verdicts.begin(), verdicts.end(), [](auto const& verdict) { return verdict.is_kept; });
}

std::string configuration_of(Script const& script, std::optional<std::string> const& file) {
    json root{{k_root, built_in_for(script)}};
    if (file) {
        root = parsed(*file);
        if (!root.is_object() || !root.contains(k_root) || !root[k_root].is_object()) {
            throw std::runtime_error("the configuration is no JSON object with a member \"ap_statemanager\"");
        }
    }
    for (auto const& setting : script.settings) {
        set(root[k_root], setting);
    }
    return root.dump(-1, ' ', false, json::error_handler_t::replace);
}

Life_options options_of(Script const& script, std::string const& configuration) {
    Life_options options{configuration};
    options.manager_is_there = script.manager_is_there;
    options.channel_is_there = script.channel_is_there;
    options.power_off_takes = script.power_off_takes;
    return options;
}

void enact(Script const& script, Life& life) {
    for (auto const& client : script.clients) {
        life.events().at(Time(0),
                         [&life, &client] { life.clients().connect(client.name, client.manner, client.state); });
    }
    for (auto const& event : script.events) {
        life.events().at(event.at, [&life, &event] { event.act(life); });
    }
}

Outcome play(Script const& script, std::string const& configuration, bool with_log) {
    auto options = options_of(script, configuration);
    options.with_log = with_log;
    std::uint64_t cycles = 0;
    std::function<void()> stop;
    options.on_wait = [&] {
        if (++cycles > k_most_cycles) {
            stop();
        }
    };
    Life life(std::move(options));
    stop = [&life] { life.terminate(); };
    enact(script, life);
    life.run(script.end());
    if (cycles > k_most_cycles) {
        throw Too_many_cycles("a life has at most " + std::to_string(k_most_cycles) +
                              " cycles: it needs an earlier \"until\" or a longer StateManagerMainPeriod");
    }
    Outcome outcome{life.timeline(), {}, life.longest_cycle()};
    for (auto const& expectation : script.expectations) {
        outcome.verdicts.push_back(judge(expectation, outcome.timeline));
    }
    return outcome;
}

}  // namespace simulation
