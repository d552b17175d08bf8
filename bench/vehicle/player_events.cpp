#include "bench/vehicle/player_events.h"

#include "base/hex.h"
#include "bench/process/player.h"

namespace bench::vehicle {

namespace {

using nlohmann::json;

std::string machine_state_of(std::string const& unit) {
    constexpr std::string_view prefix = "MachineState-";
    constexpr std::string_view suffix = ".target";
    if (unit.rfind(prefix, 0) != 0 || unit.size() < prefix.size() + suffix.size()) {
        return unit;
    }
    return unit.substr(prefix.size(), unit.size() - prefix.size() - suffix.size());
}

std::int64_t time_of(json const& message) {
    return message.at("t").get<std::int64_t>();
}

std::vector<std::uint8_t> octets_of(json const& message, char const* member) {
    return base::from_hex(message.at(member).get<std::string>()).value_or(std::vector<std::uint8_t>());
}

}  // namespace

Timeline events_of_hypervisor(json const& message) {
    if (!has_members(message, {{"event", "write"}})) {
        return {};
    }
    auto const kind = message.at("file") == "set_status" ? Kind::state_word : Kind::restart_word;
    return {{time_of(message), kind, message.at("text").get<std::string>()}};
}

Timeline events_of_service_manager(json const& message) {
    if (has_members(message, {{"event", "call"}, {"method", "StartUnit"}})) {
        return {{time_of(message), Kind::machine_state, machine_state_of(message.at("unit").get<std::string>())}};
    }
    Timeline events;
    if (has_members(message, {{"event", "notify"}})) {
        for (auto const& [variable, value] : message.at("variables").items()) {
            events.push_back(
                {time_of(message), variable == "WATCHDOG" ? Kind::watchdog : Kind::notification, variable});
        }
    }
    return events;
}

Timeline events_of_node(json const& message) {
    if (has_members(message, {{"event", "nm_state"}})) {
        return {{time_of(message), Kind::bus, message.at("to").get<std::string>()}};
    }
    if (has_members(message, {{"event", "network_state"}})) {
        return {event_of_octets(time_of(message), Kind::network_state, octets_of(message, "bits"))};
    }
    if (has_members(message, {{"event", "call"}, {"method", "SetUserData"}})) {
        return {event_of_octets(time_of(message), Kind::user_data, octets_of(message, "bytes"))};
    }
    return {};
}

std::optional<Event> event_of_application(std::string const& neighbour, json const& command, json const& answer) {
    constexpr std::string_view prefix = "application ";
    auto const does = command.value("do", std::string());
    if (neighbour.rfind(prefix, 0) != 0 || (does != "request" && does != "release")) {
        return std::nullopt;
    }
    return event_of(answer.value("t", std::int64_t{0}), Kind::application,
                    {neighbour.substr(prefix.size()), does + 's', command.value("what", "")});
}

}  // namespace bench::vehicle
