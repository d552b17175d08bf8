#include "bench/tour/client_bars.h"

#include <algorithm>

namespace bench::tour {

using vehicle::Event;
using vehicle::Kind;
using vehicle::Timeline;
using Outcome = Client_bar::Outcome;

namespace {

bool is_of(Event const& event, std::string const& client) {
    return event.kind == Kind::client && event.act.who == client;
}

bool times_out(Event const& event, std::string const& client) {
    return event.kind == Kind::log && event.text == "State notification client [ " + client + " ] timed out";
}

// Up to the client's next event, whatever it is; one that is given up stays in its debt until then.
Client_bar bar_from(Timeline const& events, Timeline::const_iterator asked) {
    auto const& act = asked->act;
    auto const next = std::find_if(asked + 1, events.end(), [&](auto const& event) { return is_of(event, act.who); });
    bool const is_given_up = std::any_of(asked, next, [&](auto const& event) { return times_out(event, act.who); });
    auto outcome = Outcome::missing;
    if (next != events.end() && !is_given_up && next->act.what == "answered") {
        outcome = next->act.status == 0 ? Outcome::done : Outcome::failed;
    }
    return {act.who, act.of, asked->time, next != events.end() ? next->time : events.back().time, outcome};
}

}  // namespace

std::vector<Client_bar> client_bars(Timeline const& events) {
    std::vector<Client_bar> bars;
    for (auto event = events.begin(); event != events.end(); ++event) {
        if (event->kind == Kind::client && event->act.what == "asked") {
            bars.push_back(bar_from(events, event));
        }
    }
    return bars;
}

std::vector<std::string> clients_in(Timeline const& events) {
    std::vector<std::string> clients;
    for (auto const& event : events) {
        auto const client = event.kind == Kind::client ? event.act.who : "";
        if (!client.empty() && std::find(clients.begin(), clients.end(), client) == clients.end()) {
            clients.push_back(client);
        }
    }
    return clients;
}

}  // namespace bench::tour
