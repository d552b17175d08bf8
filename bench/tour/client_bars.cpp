#include "bench/tour/client_bars.h"

#include <algorithm>
#include <sstream>

namespace bench::tour {

using vehicle::Event;
using vehicle::Kind;
using vehicle::Timeline;
using Outcome = Client_bar::Outcome;

namespace {

struct Words {
    std::string client;
    std::string what;
    std::string state;
    int status{0};
};

Words words_of(Event const& event) {
    Words words;
    std::istringstream text(event.text);
    text >> words.client >> words.what >> words.state >> words.status;
    return words;
}

bool is_of(Event const& event, std::string const& client) {
    return event.kind == Kind::client && words_of(event).client == client;
}

bool times_out(Event const& event, std::string const& client) {
    return event.kind == Kind::log && event.text == "State notification client [ " + client + " ] timed out";
}

// Up to the client's next event, whatever it is; one that is given up stays in its debt until then.
Client_bar bar_from(Timeline const& events, Timeline::const_iterator asked) {
    auto const words = words_of(*asked);
    auto const next =
        std::find_if(asked + 1, events.end(), [&](auto const& event) { return is_of(event, words.client); });
    bool const is_given_up =
        std::any_of(asked, next, [&](auto const& event) { return times_out(event, words.client); });
    auto outcome = Outcome::missing;
    if (next != events.end() && !is_given_up && words_of(*next).what == "answered") {
        outcome = words_of(*next).status == 0 ? Outcome::done : Outcome::failed;
    }
    return {words.client, words.state, asked->time, next != events.end() ? next->time : events.back().time, outcome};
}

}  // namespace

std::vector<Client_bar> client_bars(Timeline const& events) {
    std::vector<Client_bar> bars;
    for (auto event = events.begin(); event != events.end(); ++event) {
        if (event->kind == Kind::client && words_of(*event).what == "asked") {
            bars.push_back(bar_from(events, event));
        }
    }
    return bars;
}

std::vector<std::string> clients_in(Timeline const& events) {
    std::vector<std::string> clients;
    for (auto const& event : events) {
        auto const client = event.kind == Kind::client ? words_of(event).client : "";
        if (!client.empty() && std::find(clients.begin(), clients.end(), client) == clients.end()) {
            clients.push_back(client);
        }
    }
    return clients;
}

}  // namespace bench::tour
