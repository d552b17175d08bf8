#include "diagram.h"

#include "bench/rules/rules.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <sstream>
#include <utility>
#include <vector>

namespace {

using bench::rules::State;

struct Place {
    double x;
    double y;
};

// Lengths in px. In the order of the states' numbers.
constexpr std::array<Place, 8> k_places{
    {{110, 150}, {430, 150}, {790, 150}, {790, 370}, {1120, 590}, {430, 370}, {430, 590}, {110, 370}}};
constexpr double k_half_width = 70;
constexpr double k_half_height = 24;
constexpr double k_aside = 9;  ///< of an arrow from the line between two boxes that lead to each other, to its right
constexpr double k_line = 15;
constexpr double k_character = 7;

using Way = std::pair<State, State>;

/// What the straight line would run through a box for goes around it, by two more points of a curve; how far along the
/// way its label stands, where the middle is taken by others; and how far from the line.
struct Course {
    std::vector<Place> around{};
    double label_at{0.5};
    Place label_by{0, 0};
};

Course course(Way const& way) {
    static auto const& courses = *new std::map<Way, Course>{
        {{State::running, State::shutting_down}, {{{470, -10}, {1150, -10}}}},
        {{State::resuming, State::shutting_down}, {{{110, 730}, {700, 730}}, 0.35}},
        {{State::running, State::nm_controlled}, {{}, 0.5, {0, 14}}},
        {{State::nm_controlled, State::running}, {{}, 0.5, {0, -10}}},
        {{State::nm_controlled, State::preparing}, {{}, 0.3}},
        {{State::nm_controlled, State::post_run}, {{}, 0.5, {-62, 0}}},
        {{State::post_run, State::nm_controlled}, {{}, 0.25, {38, 0}}},
        {{State::nm_controlled, State::shutting_down}, {{}, 0.35}},
        {{State::post_run, State::running}, {{}, 0.3}},
    };
    auto const found = courses.find(way);
    return found == courses.end() ? Course() : found->second;
}

Place place(State state) {
    return k_places.at(static_cast<unsigned>(state));
}

/// Where a line from the middle of a box towards a point leaves the box.
Place border(Place middle, Place towards) {
    double const dx = towards.x - middle.x;
    double const dy = towards.y - middle.y;
    double const share =
        std::min(dx == 0 ? 1e9 : k_half_width / std::abs(dx), dy == 0 ? 1e9 : k_half_height / std::abs(dy));
    return {std::round(middle.x + dx * share), std::round(middle.y + dy * share)};
}

std::pair<Place, Place> moved_aside(Place from, Place to) {
    double const length = std::hypot(to.x - from.x, to.y - from.y);
    double const x = -(to.y - from.y) / length * k_aside;
    double const y = (to.x - from.x) / length * k_aside;
    return {{std::round(from.x + x), std::round(from.y + y)}, {std::round(to.x + x), std::round(to.y + y)}};
}

Place on_curve(Place a, Place b, Place c, Place d, double t) {
    double const s = 1 - t;
    auto const mix = [&](double at, double bt, double ct, double dt) {
        return std::round(s * s * s * at + 3 * s * s * t * bt + 3 * s * t * t * ct + t * t * t * dt);
    };
    return {mix(a.x, b.x, c.x, d.x), mix(a.y, b.y, c.y, d.y)};
}

void put_label(std::ostream& out, Place at, std::vector<std::string> const& lines) {
    std::size_t longest = 0;
    for (auto const& line : lines) {
        longest = std::max(longest, line.size());
    }
    auto const width = static_cast<double>(longest) * k_character + 4;
    auto const height = static_cast<double>(lines.size()) * k_line;
    out << "<rect class=\"ground\" x=\"" << at.x - width / 2 << "\" y=\"" << at.y - height / 2 << "\" width=\"" << width
        << "\" height=\"" << height << "\"/>\n";
    double y = at.y - k_line * (static_cast<double>(lines.size()) - 1) / 2 + 4;
    for (auto const& line : lines) {
        out << "<text x=\"" << at.x << "\" y=\"" << y << "\" class=\"label\">" << line << "</text>\n";
        y += k_line;
    }
}

void put_arrow(std::ostream& out, Way const& way, bool has_way_back, std::vector<std::string> const& labels) {
    auto const [around, label_at, label_by] = course(way);
    bool const is_curve = !around.empty();
    auto const middles = std::pair(place(way.first), place(way.second));
    auto const [from, to] = has_way_back ? moved_aside(middles.first, middles.second) : middles;
    auto const start = border(from, is_curve ? around.front() : to);
    auto const end = border(to, is_curve ? around.back() : from);
    auto const second = is_curve ? around.front() : start;
    auto const third = is_curve ? around.back() : end;
    out << "<path d=\"M " << start.x << ' ' << start.y << " C " << second.x << ' ' << second.y << ' ' << third.x << ' '
        << third.y << ' ' << end.x << ' ' << end.y << "\"/>\n";
    auto const label = on_curve(start, second, third, end, label_at);
    put_label(out, {label.x + label_by.x, label.y + label_by.y}, labels);
}

void put_box(std::ostream& out, State state) {
    auto const middle = place(state);
    out << "<rect x=\"" << middle.x - k_half_width << "\" y=\"" << middle.y - k_half_height << "\" width=\""
        << 2 * k_half_width << "\" height=\"" << 2 * k_half_height << "\" rx=\"8\"/>\n<text x=\"" << middle.x
        << "\" y=\"" << middle.y + 5 << "\" class=\"state\">" << bench::rules::name(state) << "</text>\n";
}

constexpr char const* k_head =
    R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 1230 700" font-family="DejaVu Sans, Helvetica, sans-serif">
<style>
rect { fill: #ebf4ff; stroke: #2b6cb0; stroke-width: 1.5 }
path { fill: none; stroke: #4a5568; stroke-width: 1.3; marker-end: url(#tip) }
text { text-anchor: middle; fill: #1a202c }
.state { font-size: 15px; font-weight: bold }
.label { font-size: 12px; fill: #2d3748 }
.ground { fill: #ffffff; stroke: none }
</style>
<defs><marker id="tip" viewBox="0 0 10 10" refX="9" refY="5" markerWidth="8" markerHeight="8" orient="auto"><polygon points="0,0 10,5 0,10" fill="#4a5568"/></marker></defs>
<rect width="1230" height="700" style="fill: #ffffff; stroke: none"/>
)";

}  // namespace

std::string diagram() {
    std::map<Way, std::vector<std::string>> ways;
    for (auto const& row : bench::rules::rows()) {
        if (row.to != State::stay) {
            ways[{row.from, row.to}].emplace_back(row.label);
        }
    }
    std::ostringstream out;
    out << k_head;
    for (auto const& [way, labels] : ways) {
        put_arrow(out, way, ways.count({way.second, way.first}) != 0, labels);
    }
    for (auto const& row : bench::rules::rows()) {
        if (row.number == 1) {
            put_box(out, row.from);
        }
    }
    out << "</svg>\n";
    return out.str();
}
