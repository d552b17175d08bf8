#include "bench/vehicle/client_players.h"

#include "bench/json_lines/clock.h"
#include "bench/process/end_signals.h"

#include <algorithm>
#include <csignal>
#include <stdexcept>
#include <utility>

namespace bench::vehicle {

using nlohmann::json;

Client_players::Client_players(std::string program, std::vector<std::string> const& names)
    : program_(std::move(program)) {
    for (auto const& name : names) {
        clients_.push_back({nullptr, Client_record(name)});
        start(clients_.back());
    }
}

void Client_players::start(Client& client) const {
    client.player = std::make_unique<Player>(std::vector<std::string>{program_, client.record.status().name});
    client.record.begin();
    client.seen = 0;
}

bool Client_players::has(std::string const& name) const {
    return std::any_of(clients_.begin(), clients_.end(),
                       [&](Client const& client) { return client.record.status().name == name; });
}

Client_players::Client& Client_players::client(std::string const& name) {
    auto const found = std::find_if(clients_.begin(), clients_.end(),
                                    [&](Client const& candidate) { return candidate.record.status().name == name; });
    if (found == clients_.end()) {
        throw std::runtime_error("There is no client \"" + name + "\"");
    }
    return *found;
}

json Client_players::tell(std::string const& name, json const& command) {
    auto& client = this->client(name);
    if (!client.record.status().is_running) {
        start(client);
    }
    auto answer = client.player->command(command);
    if (!answer.value("ok", false)) {
        throw std::runtime_error(name + " refused " + command.dump() + ": " + answer.value("error", ""));
    }
    if (command.contains("as")) {
        auto const manner = command.at("as").get<std::string>();
        client.record.set_manner(manner);
        if (manner == "crashing") {
            client.player->process().expect(k_signal_status + SIGKILL);
        }
    }
    return answer;
}

// Each client tells its own events in their order; together they are put in that of their times.
Timeline Client_players::take() {
    Timeline events;
    for (auto& client : clients_) {
        if (client.record.status().is_running) {
            hear_news(client, events);
            note_end(client, events);
        }
    }
    std::stable_sort(events.begin(), events.end(),
                     [](Event const& left, Event const& right) { return left.time < right.time; });
    return events;
}

void Client_players::hear_news(Client& client, Timeline& events) const {
    auto const& messages = client.player->log().messages();
    for (; client.seen < messages.size(); ++client.seen) {
        if (auto event = client.record.hear(messages[client.seen], limits_)) {
            events.push_back(std::move(*event));
        }
    }
}

void Client_players::note_end(Client& client, Timeline& events) const {
    if (client.player->process().status()) {
        hear_news(client, events);
        events.push_back(client.record.note_end(monotonic_ns()));
    }
}

std::vector<Client_status> Client_players::statuses() const {
    std::vector<Client_status> statuses;
    for (auto const& client : clients_) {
        statuses.push_back(client.record.status());
    }
    return statuses;
}

std::vector<int> Client_players::descriptors() const {
    std::vector<int> descriptors;
    for (auto const& client : clients_) {
        if (client.record.status().is_running) {
            descriptors.push_back(client.player->process().output());
        }
    }
    return descriptors;
}

}  // namespace bench::vehicle
