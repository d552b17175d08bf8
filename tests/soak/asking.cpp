#include "asking.h"

#include "words.h"

#include <algorithm>

namespace soak {

void Asking::hear(Event const& event, Finding const& finding) {
    if (circumstances_.log_has_hole) {
        return;
    }
    if (event.kind == Kind::client) {
        hear_act(event, finding);
    } else if (is_of_daemon(event)) {
        hear_log(event, finding);
    }
}

void Asking::hear_log(Event const& event, Finding const& finding) {
    auto const& text = event.text;
    if (auto const newcomer = behind("client connected: name = ", text)) {
        auto& client = clients_[word_at(*newcomer, 0)];
        at(client, ++client.server);
    } else if (auto const gone = behind("client disconnected: ", text)) {
        auto& client = clients_[word_at(*gone, 0)];
        at(client, client.server).is_over = true;
    } else if (auto const told = behind("State notification client [ ", text)) {
        if (told->find("] timed out") != std::string::npos) {
            ++clients_[word_at(*told, 0)].timed_out;
        }
    } else if (auto const state = behind("sending state change request to clients. new state = ", text)) {
        send(word_at(*state, 0));
    } else if (auto const request = behind("Requesting ", text)) {
        auto const place = request->find(" mode for ");
        if (place != std::string::npos) {
            group_ = request->substr(place + 10);
            asked_at_ = event.time;
        }
    } else if (text.rfind("Received ", 0) == 0 && text.find(" completion notification for ") != std::string::npos) {
        judge_time(event, finding);
    }
}

void Asking::judge_time(Event const& event, Finding const& finding) {
    auto const limit =
        (group_ == "client applications" ? circumstances_.application_s : circumstances_.diagnosis_s) * k_ns_per_s;
    auto const taken = event.time - asked_at_;
    auto const place = event.text.find("Status: ");
    bool const is_late = place != std::string::npos && word_at(event.text, place + 8) == "1";
    if (asked_at_ != 0 && is_late && taken < limit) {
        finding(group_ + " had " + in_ms(taken) + " only: " + event.text);
    }
    if (asked_at_ != 0 && taken > limit + k_slack + circumstances_.stalled_in(asked_at_, event.time)) {
        finding(group_ + " had " + in_ms(taken) + ": " + event.text);
    }
    asked_at_ = 0;
}

// By the server, to each connection of the group that was requested last.
void Asking::send(std::string const& state) {
    for (auto& [name, client] : clients_) {
        auto const* const group = name == "diag::dcm" ? "DCM" : name == "diag::dem" ? "DEM" : "client applications";
        if (client.server > 0 && group == group_ && !at(client, client.server).is_over) {
            at(client, client.server).sent.push_back(state);
        }
    }
}

// A request with the number 0 comes when the client connects, and nobody waits for its answer. One that stood still may
// tell of a request by the daemon before.
void Asking::hear_act(Event const& event, Finding const& finding) {
    auto const& act = event.act;
    auto& client = clients_[act.who];
    if (act.what == "connected") {
        at(client, ++client.client);
    } else if (act.what == "asked" && act.status != 0 && client.client > 0) {
        auto& connection = at(client, client.client);
        auto const next = connection.received.size() + 1;
        auto const number = static_cast<std::size_t>(act.status);
        if (number < next) {
            finding(event.text + " with the number " + std::to_string(number) + ", not " + std::to_string(next));
            return;
        }
        connection.received.resize(number - 1);
        connection.received.push_back(act.of);
    }
}

Asking::Connection& Asking::at(Client& client, std::size_t count) {
    client.all.resize(std::max(client.all.size(), count));
    return client.all.at(count - 1);
}

std::string Asking::missing_at_rest() {
    if (circumstances_.log_has_hole) {
        return {};
    }
    for (auto const& [name, client] : clients_) {
        for (auto const& connection : client.all) {
            bool const is_known = client.client > 0 && client.server > 0;
            if (is_known && !has_heard_all(client, connection)) {
                return name + " was asked " + std::to_string(connection.received.size()) + " times, not " +
                       std::to_string(connection.sent.size()) + " times, or for other states";
            }
        }
    }
    return asked_at_ == 0 ? "" : "the answers of " + group_;
}

bool Asking::has_heard_all(Client const& client, Connection const& connection) {
    auto const& sent = connection.sent;
    auto const& received = connection.received;
    if (received.size() > sent.size() || (!connection.is_over && received.size() != sent.size())) {
        return false;
    }
    auto const passed_over = std::count(received.begin(), received.end(), "");
    return passed_over <= client.timed_out &&
           std::equal(received.begin(), received.end(), sent.begin(),
                      [](auto const& heard, auto const& asked) { return heard.empty() || heard == asked; });
}

}  // namespace soak
