#include "bench/vehicle/client_record.h"

#include <utility>

namespace bench::vehicle {

using nlohmann::json;

namespace {

constexpr std::int64_t k_ns_per_s = 1'000'000'000;

bool is_diagnosis(std::string const& name) {
    return name == "diag::dcm" || name == "diag::dem";
}

void read_limit(json const& configuration, char const* place, std::int64_t& limit) {
    json::json_pointer const pointer(place);
    if (configuration.is_object() && configuration.contains(pointer) && configuration.at(pointer).is_number()) {
        limit = configuration.at(pointer).get<std::int64_t>();
    }
}

/// Nothing for what is the player's own business.
std::optional<Act> act_of(std::string const& name, json const& message) {
    auto const event = message.value("event", "");
    auto const state = message.value("state", "");
    if (event == "request") {
        return Act{name, "asked", state, message.value("number", 0)};
    }
    if (event == "answer") {
        return Act{name, "answered", state, message.value("status", 0)};
    }
    if (event == "connected") {
        return Act{name, event, state};
    }
    return event == "disconnected" ? std::optional<Act>({name, event}) : std::nullopt;
}

}  // namespace

Answer_limits limits_in(json const& configuration) {
    Answer_limits limits;
    read_limit(configuration, "/ap_statemanager/ApplicationSuspendRequestTimeout", limits.application_s);
    read_limit(configuration, "/ap_statemanager/DMSuspendRequestTimeout", limits.diagnosis_s);
    return limits;
}

std::optional<Event> Client_record::hear(json const& message, Answer_limits const& limits) {
    auto act = act_of(status_.name, message);
    if (!act) {
        return std::nullopt;
    }
    auto const event = message.at("event").get<std::string>();
    bool const is_request = event == "request";
    status_.is_connected = event != "disconnected";
    status_.state = is_request ? status_.state : message.at("state").get<std::string>();
    status_.owed = is_request ? message.at("state").get<std::string>() : "";
    status_.deadline = is_request ? deadline_of(message, limits) : 0;
    return event_of(message.at("t").get<std::int64_t>(), Kind::client, *std::move(act));
}

// Nobody waits for the answer to the request that comes when a client connects; its number is 0.
std::int64_t Client_record::deadline_of(json const& request, Answer_limits const& limits) const {
    auto const limit = is_diagnosis(status_.name) ? limits.diagnosis_s : limits.application_s;
    return request.value("number", 0U) == 0 ? 0 : request.at("t").get<std::int64_t>() + limit * k_ns_per_s;
}

Event Client_record::note_end(std::int64_t time) {
    status_.is_running = status_.is_connected = false;
    status_.owed.clear();
    status_.deadline = 0;
    return event_of(time, Kind::client, {status_.name, "crashed"});
}

void Client_record::begin() {
    *this = Client_record(std::string(status_.name));
}

}  // namespace bench::vehicle
