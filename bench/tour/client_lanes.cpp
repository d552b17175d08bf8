#include "bench/tour/client_bars.h"
#include "bench/tour/lanes.h"
#include "bench/tour/svg.h"

#include <algorithm>
#include <map>
#include <string>
#include <vector>

namespace bench::tour {

using vehicle::Timeline;

namespace {

constexpr double k_lane = 26;

char const* colour_of(Client_bar::Outcome outcome) {
    switch (outcome) {
        case Client_bar::Outcome::done:
            return "#68d391";
        case Client_bar::Outcome::failed:
            return "#f6ad55";
        case Client_bar::Outcome::missing:
            break;
    }
    return "#fc8181";
}

void draw_bar(std::ostream& out, Axis const& axis, Client_bar const& bar, double y) {
    auto const x = axis.position(bar.begin);
    auto const width = std::max(axis.position(bar.end) - x, 3.0);
    out << "<rect x=\"" << x << "\" y=\"" << y + 3 << "\" width=\"" << width << "\" height=\"18\" rx=\"2\" fill=\""
        << colour_of(bar.outcome) << "\"><title>" << escaped(bar.state) << "</title></rect>\n";
    if (width > k_label_width * static_cast<double>(bar.state.size())) {
        put_text(out, x + width / 2, y + 16, bar.state, "#1a202c", "middle");
    }
}

/// Those that were asked.
std::vector<std::string> clients_with_bars(Timeline const& events) {
    auto const bars = client_bars(events);
    auto clients = clients_in(events);
    clients.erase(std::remove_if(clients.begin(), clients.end(),
                                 [&](std::string const& client) {
                                     return std::none_of(bars.begin(), bars.end(),
                                                         [&](Client_bar const& bar) { return bar.client == client; });
                                 }),
                  clients.end());
    return clients;
}

}  // namespace

double client_lanes_height(Timeline const& events) {
    return k_lane * static_cast<double>(clients_with_bars(events).size());
}

void draw_client_lanes(std::ostream& out, Timeline const& events, Axis const& axis, double y) {
    std::map<std::string, double> rows;
    for (auto const& client : clients_with_bars(events)) {
        rows[client] = y;
        put_text(out, k_left - 12, y + 16, client, "#1a202c", "end");
        y += k_lane;
    }
    for (auto const& bar : client_bars(events)) {
        draw_bar(out, axis, bar, rows.at(bar.client));
    }
}

}  // namespace bench::tour
