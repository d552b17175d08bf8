#include "bench/vm/journal.h"

#include <nlohmann/json.hpp>

namespace bench::vm {

namespace {

using vehicle::Event;
using vehicle::Kind;

constexpr std::int64_t k_ns_per_us = 1'000;
constexpr char const* k_daemon = "ap_statemanager.service";

// Messages that are no UTF-8 come as arrays of numbers, which nobody here needs.
std::string text(nlohmann::json const& object, char const* member) {
    auto const found = object.find(member);
    return found != object.end() && found->is_string() ? found->get<std::string>() : "";
}

Entry to_entry(nlohmann::json const& object) {
    auto const time = text(object, "__MONOTONIC_TIMESTAMP");
    auto const unit = text(object, "UNIT");
    auto const result = text(object, "JOB_RESULT");
    return {(time.empty() ? 0 : std::stoll(time)) * k_ns_per_us, unit.empty() ? text(object, "_SYSTEMD_UNIT") : unit,
            text(object, "MESSAGE"), result.empty() ? "" : text(object, "JOB_TYPE") + " " + result};
}

std::optional<std::string> machine_state_of(std::string const& unit) {
    constexpr std::string_view prefix = "MachineState-";
    constexpr std::string_view suffix = ".target";
    if (unit.size() <= prefix.size() + suffix.size() || unit.rfind(prefix, 0) != 0) {
        return std::nullopt;
    }
    return unit.substr(prefix.size(), unit.size() - prefix.size() - suffix.size());
}

std::optional<Event> of_daemon(Entry const& entry) {
    auto const says = [&entry](char const* words) { return entry.message.find(words) != std::string::npos; };
    if (entry.job == "start done") {
        return Event{entry.time, Kind::notification, "READY"};
    }
    if (says(": Deactivated successfully")) {
        return Event{entry.time, Kind::ended, "0"};
    }
    constexpr std::string_view exited = "Main process exited, ";
    auto const position = entry.message.find(exited);
    if (position != std::string::npos) {
        return Event{entry.time, Kind::ended, entry.message.substr(position + exited.size())};
    }
    return std::nullopt;
}

}  // namespace

std::vector<Entry> Journal::add(std::string_view bytes) {
    lines_.add(bytes);
    std::vector<Entry> entries;
    while (auto const line = lines_.next()) {
        auto const object = nlohmann::json::parse(*line, nullptr, false);
        if (object.is_object()) {
            entries.push_back(to_entry(object));
        }
    }
    return entries;
}

std::optional<Event> to_event(Entry const& entry) {
    if (entry.unit == k_daemon) {
        return of_daemon(entry);
    }
    auto const state = machine_state_of(entry.unit);
    if (state && entry.job == "start done") {
        return Event{entry.time, Kind::machine_state, *state};
    }
    return std::nullopt;
}

}  // namespace bench::vm
