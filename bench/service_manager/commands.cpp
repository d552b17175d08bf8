#include "bench/service_manager/commands.h"

#include <algorithm>
#include <array>

namespace bench::service_manager {

namespace {

using nlohmann::json;

constexpr std::int64_t k_longest_delay_ms = 3'600'000;

bool is_error_name(std::string const& name) {
    return name.find('.') != std::string::npos && name.front() != '.' && name.back() != '.' &&
           name.find("..") == std::string::npos && std::all_of(name.begin(), name.end(), [](char letter) {
               return letter == '.' || letter == '_' || (letter >= '0' && letter <= '9') ||
                      (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z');
           });
}

Reaction reaction_of(Arguments& arguments) {
    Reaction reaction;
    reaction.error = arguments.text_or("error", "");
    reaction.silent = arguments.flag_or("silent", false);
    reaction.delay = std::chrono::milliseconds(arguments.number_or("delay_ms", 0, 0, k_longest_delay_ms));
    reaction.job_delay = std::chrono::milliseconds(arguments.number_or("job_delay_ms", 0, 0, k_longest_delay_ms));
    reaction.job_result = arguments.text_or("job_result", "done");
    if (!reaction.error.empty() && !is_error_name(reaction.error)) {
        throw Command_error("\"error\" must be the name of a D-Bus error");
    }
    return reaction;
}

json add_reaction(Manager& manager, Arguments& arguments) {
    std::string const method = arguments.text_or("method", "StartUnit");
    std::string const unit = arguments.text_or("unit", "*");
    Reaction const reaction = reaction_of(arguments);
    auto const count = static_cast<std::uint64_t>(arguments.number_or("count", 1, 1, INT64_MAX));
    arguments.end();
    manager.plan().add(method, unit, reaction, count);
    return {{"method", method}, {"unit", unit}};
}

json clear_reactions(Manager& manager, Arguments& arguments) {
    arguments.end();
    manager.plan().clear();
    return {};
}

json set_unit(Manager& manager, Arguments& arguments) {
    std::string const name = arguments.text("unit");
    std::string const active = arguments.text("active");
    arguments.end();
    constexpr std::array<char const*, 5> k_states{"active", "activating", "deactivating", "inactive", "failed"};
    if (std::find(k_states.begin(), k_states.end(), active) == k_states.end()) {
        throw Command_error("\"" + active + "\" is not the state of a unit");
    }
    manager.units().add(name, active);
    return {{"unit", name}};
}

json list(Manager& manager, Arguments& arguments) {
    arguments.end();
    json units = json::array();
    for (Unit const& unit : manager.units().all()) {
        units.push_back({{"unit", unit.name}, {"active", unit.active}, {"loaded", unit.loaded}});
    }
    Reports const& reports = manager.reports();
    return {{"units", units},
            {"ready", reports.ready},
            {"stopping", reports.stopping},
            {"watchdog", reports.watchdog},
            {"last_watchdog", reports.last_watchdog}};
}

}  // namespace

void add_commands(Command_table& table, Manager& manager) {
    table.add("reaction", [&manager](Arguments& arguments) { return add_reaction(manager, arguments); });
    table.add("clear_reactions", [&manager](Arguments& arguments) { return clear_reactions(manager, arguments); });
    table.add("set_unit", [&manager](Arguments& arguments) { return set_unit(manager, arguments); });
    table.add("list", [&manager](Arguments& arguments) { return list(manager, arguments); });
}

}  // namespace bench::service_manager
