#include "simulation/trace_life.h"

#include "base/hex.h"
#include "simulation/configuration.h"
#include "simulation/trace_words.h"

#include <array>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>

namespace simulation {

namespace {

using nlohmann::json;

constexpr char const* k_first_words = "Configuration for hostname: ";

/// A member of the instances' lists, the list, and how many there are.
struct List {
    char const* member;
    char const* list;
    char const* most;
};

constexpr std::array k_lists{
    List{"EcuAliveInterfaceInstance", "ApplicationsRequestAliveConfig", "MaxNumberOfApplicationsRequestAlive"},
    List{"NetworkAliveInterfaceInstance", "ApplicationsRequestNetworkConfig", "MaxNumberOfApplicationsRequestNetwork"},
    List{"CWUInterfaceInstance", "CWURequestConfig", "MaxNumberOfCWURequest"}};

void set_told(json& settings, std::string const& key, std::string const& value) {
    for (auto const& list : k_lists) {
        if (key == list.member) {
            settings[list.list].push_back({{key, value}});
        }
    }
    for (auto* const section : {&settings, &settings["SharedMemoryConfig"], &settings["NmUserDataConfig"]}) {
        auto const place = section->find(key);
        if (place == section->end() || place->is_structured()) {
            continue;
        }
        auto const parsed = json::parse(value, nullptr, false);
        *place = place->is_string() || parsed.is_discarded() ? json(value) : parsed;
    }
}

}  // namespace

Trace_lives lives_of(std::string_view trace) {
    dlt::Reader reader;
    reader.add(trace);
    reader.end();
    std::vector<Trace_life> lives;
    std::map<std::string, std::size_t> current;             // by ECU
    std::map<std::string, std::optional<std::size_t>> gap;  // since the ECU's last message
    std::optional<std::size_t> first_gap;
    std::size_t messages = 0;
    while (auto message = reader.next()) {
        ++messages;
        if (message->gap) {
            first_gap = first_gap ? first_gap : message->gap;
            for (auto const& life : current) {
                gap[life.first] = gap[life.first] ? gap[life.first] : message->gap;
            }
        }
        if (message->application != "STMG" || message->level == 0) {
            continue;
        }
        auto const found = current.find(message->ecu);
        bool const is_first = found == current.end() || argument(*message, 0) == k_first_words ||
                              lives[found->second].back().session != message->session;
        if (is_first) {
            current[message->ecu] = lives.size();
            lives.emplace_back();
        }
        auto const before = std::exchange(gap[message->ecu], std::nullopt);
        message->gap = is_first ? std::nullopt : before;
        lives[current[message->ecu]].push_back(std::move(*message));
    }
    if (messages == 0) {
        throw std::runtime_error("it holds no DLT message in its " + std::to_string(trace.size()) + " bytes");
    }
    if (lives.empty()) {
        throw std::runtime_error("it holds no message of the state manager (application STMG)");
    }
    return {std::move(lives), reader.skipped_bytes(), first_gap ? first_gap : reader.gap()};
}

std::string configuration_in(Trace_life const& life) {
    auto root = json::parse(configuration_of({}, std::nullopt));
    auto& settings = root["ap_statemanager"];
    for (auto const& list : k_lists) {
        settings[list.list] = json::array();
    }
    bool is_told = false;
    for (auto const& message : life) {
        if (argument(message, 0) == "State_manager_json_parser: Get ") {
            is_told = true;
            set_told(settings, argument(message, 1), argument(message, 3));
        } else if (argument(message, 0) == "The following NM request pattern is used: ") {
            settings["DefautNMRequestPattern"] =
                base::from_hex(argument(message, 1)).value_or(std::vector<std::uint8_t>());
        }
    }
    if (!is_told) {
        return "";
    }
    try {
        return root.dump();
    } catch (json::type_error const&) {
        throw std::runtime_error("a text in it is not UTF-8");
    }
}

}  // namespace simulation
