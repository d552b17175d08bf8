#include "bench/tour/lanes.h"
#include "bench/tour/svg.h"

#include <array>
#include <string>

namespace bench::tour {

using vehicle::Kind;
using vehicle::Timeline;

namespace {

constexpr double k_height = 44;

struct Lane {
    Kind kind;
    char const* title;
    char const* colour;
};

constexpr std::array<Lane, 7> k_lanes{{{Kind::key, "Hypervisor's keys", "#b5651d"},
                                       {Kind::machine_state, "Machine state", "#2b6cb0"},
                                       {Kind::notification, "Service manager", "#2f855a"},
                                       {Kind::power_off, "Power-off service", "#9b2c2c"},
                                       {Kind::application, "Applications", "#805ad5"},
                                       {Kind::network_state, "Network needed by", "#00796b"},
                                       {Kind::watchdog, "Watchdog", "#718096"}}};

// Above the line where there is room, else in one of two rows below it.
void draw_label(std::ostream& out, std::string const& label, double x, double y, char const* colour,
                std::array<double, 3>& free_from) {
    constexpr std::array<double, 3> offsets{14, 36, 48};
    std::size_t row = 0;
    while (row + 1 < offsets.size() && x < free_from.at(row)) {
        ++row;
    }
    put_text(out, x, y + offsets.at(row), label, colour);
    free_from.at(row) = x + k_label_width * static_cast<double>(label.size());
}

void draw_lane(std::ostream& out, Lane const& lane, Timeline const& events, Axis const& axis, double y) {
    put_text(out, k_left - 12, y + 24, lane.title, "#1a202c", "end");
    out << "<line x1=\"" << k_left << "\" x2=\"" << k_left + k_width << "\" y1=\"" << y + 20 << "\" y2=\"" << y + 20
        << "\" stroke=\"#e2e8f0\"/>\n";
    std::array<double, 3> free_from{};
    for (auto const& event : events) {
        if (event.kind != lane.kind) {
            continue;
        }
        auto const x = axis.position(event.time);
        auto const is_beat = lane.kind == Kind::watchdog;
        out << "<circle cx=\"" << x << "\" cy=\"" << y + 20 << "\" r=\"" << (is_beat ? 2 : 4.5) << "\" fill=\""
            << lane.colour << "\"><title>" << escaped(event.text) << "</title></circle>\n";
        if (!is_beat) {
            draw_label(out, event.text, x + 7, y, lane.colour, free_from);
        }
    }
}

}  // namespace

double event_lanes_height() {
    return k_height * k_lanes.size();
}

void draw_event_lanes(std::ostream& out, Timeline const& events, Axis const& axis, double y) {
    for (auto const& lane : k_lanes) {
        draw_lane(out, lane, events, axis, y);
        y += k_height;
    }
}

}  // namespace bench::tour
