#include "bench/vehicle/client_players.h"

#include "bench/json_lines/clock.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <utility>

namespace bench::vehicle {

using nlohmann::json;

namespace {

constexpr std::int64_t k_ns_per_s = 1'000'000'000;
constexpr std::int64_t k_usual_limit_s = 60;  // for a configuration with which the daemon does not start

bool is_diagnosis(std::string const& name) {
    return name == "diag::dcm" || name == "diag::dem";
}

std::int64_t limit_in(json const& configuration, char const* place) {
    json::json_pointer const pointer(place);
    bool const is_there = configuration.is_object() && configuration.contains(pointer);
    return is_there && configuration.at(pointer).is_number() ? configuration.at(pointer).get<std::int64_t>()
                                                             : k_usual_limit_s;
}

/// "radio answered kOn 0" and the like; empty for what is the player's own business.
std::string text_of(std::string const& name, json const& message) {
    auto const event = message.value("event", "");
    auto const state = message.value("state", "");
    if (event == "request") {
        return name + " asked " + state;
    }
    if (event == "answer") {
        return name + " answered " + state + ' ' + std::to_string(message.value("status", 0));
    }
    if (event == "connected") {
        return name + " connected " + state;
    }
    return event == "disconnected" ? name + " disconnected" : "";
}

}  // namespace

Client_players::Client_players(std::string program, std::vector<std::string> const& names)
    : program_(std::move(program)) {
    for (auto const& name : names) {
        Client client;
        client.status.name = name;
        start(client);
        clients_.push_back(std::move(client));
    }
}

void Client_players::start(Client& client) const {
    auto const name = client.status.name;
    client.player = std::make_unique<Player>(std::vector<std::string>{program_, name});
    client.status = {};
    client.status.name = name;
    client.seen = 0;
}

void Client_players::take_limits(json const& configuration) {
    application_limit_s_ = limit_in(configuration, "/ap_statemanager/ApplicationSuspendRequestTimeout");
    diagnosis_limit_s_ = limit_in(configuration, "/ap_statemanager/DMSuspendRequestTimeout");
}

bool Client_players::has(std::string const& name) const {
    return std::any_of(clients_.begin(), clients_.end(),
                       [&](Client const& client) { return client.status.name == name; });
}

json Client_players::tell(std::string const& name, json const& command) {
    auto const client = std::find_if(clients_.begin(), clients_.end(),
                                     [&](Client const& candidate) { return candidate.status.name == name; });
    if (client == clients_.end()) {
        throw std::runtime_error("There is no client \"" + name + "\"");
    }
    if (!client->status.is_running) {
        start(*client);
    }
    auto answer = client->player->command(command);
    if (!answer.value("ok", false)) {
        throw std::runtime_error(name + " refused " + command.dump() + ": " + answer.value("error", ""));
    }
    client->status.manner = command.value("as", client->status.manner);
    return answer;
}

// Each client tells its own events in their order; together they are put in that of their times.
Timeline Client_players::take() {
    Timeline events;
    for (auto& client : clients_) {
        if (client.status.is_running) {
            take_news(client, events);
            take_end(client, events);
        }
    }
    std::stable_sort(events.begin(), events.end(),
                     [](Event const& left, Event const& right) { return left.time < right.time; });
    return events;
}

void Client_players::take_news(Client& client, Timeline& events) const {
    auto const& messages = client.player->log().messages();
    auto& status = client.status;
    for (; client.seen < messages.size(); ++client.seen) {
        auto const& message = messages[client.seen];
        auto text = text_of(status.name, message);
        if (text.empty()) {
            continue;
        }
        auto const event = message.at("event").get<std::string>();
        bool const is_request = event == "request";
        status.is_connected = event != "disconnected";
        status.state = is_request ? status.state : message.at("state").get<std::string>();
        status.owed = is_request ? message.at("state").get<std::string>() : "";
        status.deadline = is_request ? deadline_of(client, message) : 0;
        events.push_back({message.at("t").get<std::int64_t>(), Kind::client, std::move(text)});
    }
}

// Nobody waits for the answer to the request that comes when a client connects; its number is 0.
std::int64_t Client_players::deadline_of(Client const& client, json const& request) const {
    auto const limit = is_diagnosis(client.status.name) ? diagnosis_limit_s_ : application_limit_s_;
    return request.value("number", 0U) == 0 ? 0 : request.at("t").get<std::int64_t>() + limit * k_ns_per_s;
}

void Client_players::take_end(Client& client, Timeline& events) const {
    if (!client.player->process().wait(std::chrono::milliseconds::zero())) {
        return;
    }
    take_news(client, events);
    auto& status = client.status;
    status.is_running = status.is_connected = false;
    status.owed.clear();
    status.deadline = 0;
    events.push_back({monotonic_ns(), Kind::client, status.name + " crashed"});
}

std::vector<Client_status> Client_players::statuses() const {
    std::vector<Client_status> statuses;
    for (auto const& client : clients_) {
        statuses.push_back(client.status);
    }
    return statuses;
}

std::vector<int> Client_players::descriptors() const {
    std::vector<int> descriptors;
    for (auto const& client : clients_) {
        if (client.status.is_running) {
            descriptors.push_back(client.player->process().output());
        }
    }
    return descriptors;
}

}  // namespace bench::vehicle
