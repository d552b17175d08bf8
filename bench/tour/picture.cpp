#include "bench/tour/picture.h"

#include "bench/tour/client_bars.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <sstream>
#include <vector>

namespace bench::tour {

using vehicle::Event;
using vehicle::Kind;
using vehicle::Timeline;

namespace {

constexpr double k_left = 150;
constexpr double k_width = 1200;
constexpr double k_lane = 44;
constexpr double k_state_lanes = 1.9;  // with room for slanted names below
constexpr double k_client_lane = 26;
constexpr double k_top = 76;
constexpr double k_label_width = 7.2;  // of one character of a label, px

struct Lane {
    Kind kind;
    char const* title;
    char const* colour;
};

constexpr std::array<Lane, 5> k_lanes{{{Kind::key, "Hypervisor's keys", "#b5651d"},
                                       {Kind::machine_state, "Machine state", "#2b6cb0"},
                                       {Kind::notification, "Service manager", "#2f855a"},
                                       {Kind::power_off, "Power-off service", "#9b2c2c"},
                                       {Kind::watchdog, "Watchdog", "#718096"}}};

std::map<std::string, char const*> const& colours_of_states() {
    static auto const& colours = *new std::map<std::string, char const*>{
        {"startingup", "#f6e05e"}, {"running", "#68d391"},     {"runnmcontrolled", "#4fd1c5"},
        {"postrun", "#63b3ed"},    {"preparing", "#f6ad55"},   {"prepared4sd", "#b794f4"},
        {"resuming", "#90cdf4"},   {"shuttingdown", "#fc8181"}};
    return colours;
}

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

std::string escaped(std::string const& text) {
    std::string result;
    for (char const character : text) {
        if (character == '<' || character == '&') {
            result += character == '<' ? "&lt;" : "&amp;";
        } else {
            result += character;
        }
    }
    return result;
}

/// Time in, position out. Nothing to see happens in most of the time, so long pauses are drawn shorter.
class Axis {
 public:
    explicit Axis(Timeline const& events) {
        std::vector<std::int64_t> times;
        for (auto const& event : events) {
            if (event.kind != Kind::log && event.kind != Kind::watchdog && event.kind != Kind::client) {
                times.push_back(event.time);
            }
        }
        std::sort(times.begin(), times.end());
        double length = 0;
        for (std::size_t index = 0; index < times.size(); ++index) {
            length += index == 0 ? 0 : weight(times[index] - times[index - 1]);
            marks_.emplace_back(times[index], length);
        }
        scale_ = length > 0 ? k_width / (length * 1.04) : 1;
    }

    double position(std::int64_t time) const {
        auto const after = std::lower_bound(marks_.begin(), marks_.end(), std::make_pair(time, -1.0));
        if (after == marks_.begin() || marks_.empty()) {
            return k_left;
        }
        auto const before = std::prev(after);
        if (after == marks_.end()) {
            return k_left + scale_ * (before->second + std::min(weight(time - before->first), 1.0));
        }
        auto const share =
            static_cast<double>(time - before->first) / static_cast<double>(after->first - before->first);
        return k_left + scale_ * (before->second + share * (after->second - before->second));
    }

    std::vector<std::pair<std::int64_t, double>> const& marks() const { return marks_; }

 private:
    static double weight(std::int64_t nanoseconds) { return 0.6 + std::sqrt(static_cast<double>(nanoseconds) / 1e7); }

    std::vector<std::pair<std::int64_t, double>> marks_;
    double scale_{1};
};

class Picture {
 public:
    explicit Picture(Timeline const& events) : events_(events), axis_(events) {
        std::stable_sort(events_.begin(), events_.end(),
                         [](auto const& left, auto const& right) { return left.time < right.time; });
    }

    std::string draw() {
        auto const clients = clients_in(events_);
        auto const bottom =
            k_top + k_lane * (k_state_lanes + k_lanes.size()) + k_client_lane * static_cast<double>(clients.size());
        auto const height = bottom + 40;
        out_ << "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " << k_left + k_width + 40 << ' ' << height
             << "\" font-family=\"DejaVu Sans, Helvetica, sans-serif\" font-size=\"12\">\n"
             << "<rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>\n"
             << "<text x=\"24\" y=\"36\" font-size=\"20\" fill=\"#1a202c\">One tour through the states of the "
                "machine</text>\n"
             << "<text x=\"24\" y=\"56\" fill=\"#4a5568\">Times in seconds since the first event; pauses are drawn "
                "shorter than they were.</text>\n";
        draw_times(bottom);
        draw_states();
        double y = k_top + k_lane * k_state_lanes;
        for (auto const& lane : k_lanes) {
            draw_lane(lane, y);
            y += k_lane;
        }
        draw_clients(clients, y);
        out_ << "</svg>\n";
        return out_.str();
    }

 private:
    void text(double x, double y, std::string const& content, char const* fill, char const* anchor = "start") {
        out_ << "<text x=\"" << x << "\" y=\"" << y << "\" fill=\"" << fill << "\" text-anchor=\"" << anchor << "\">"
             << escaped(content) << "</text>\n";
    }

    void draw_states() {
        text(k_left - 12, k_top + 28, "State", "#1a202c", "end");
        for (auto event = events_.begin(); event != events_.end(); ++event) {
            if (event->kind == Kind::state_word) {
                draw_state(*event, end_of_state(event));
            }
        }
    }

    std::int64_t end_of_state(Timeline::const_iterator begin) const {
        auto const end = std::find_if(begin + 1, events_.cend(), [](Event const& event) {
            return event.kind == Kind::state_word || event.kind == Kind::ended;
        });
        return end != events_.cend() ? end->time : events_.back().time;
    }

    void draw_state(Event const& event, std::int64_t end) {
        auto const x = axis_.position(event.time);
        auto const width = std::max(axis_.position(end) - x, 2.0);
        auto const colour = colours_of_states().find(event.text);
        out_ << "<rect x=\"" << x << "\" y=\"" << k_top + 8 << "\" width=\"" << width
             << "\" height=\"34\" rx=\"3\" stroke=\"#ffffff\" fill=\""
             << (colour != colours_of_states().end() ? colour->second : "#cbd5e0") << "\"><title>"
             << escaped(event.text) << "</title></rect>\n";
        if (width > k_label_width * static_cast<double>(event.text.size())) {
            text(x + width / 2, k_top + 29, event.text, "#1a202c", "middle");
        } else {
            out_ << "<text transform=\"translate(" << x + width / 2 + 4 << ',' << k_top + 56
                 << ") rotate(28)\" fill=\"#1a202c\" font-size=\"10\">" << escaped(event.text) << "</text>\n";
        }
    }

    void draw_lane(Lane const& lane, double y) {
        text(k_left - 12, y + 24, lane.title, "#1a202c", "end");
        out_ << "<line x1=\"" << k_left << "\" x2=\"" << k_left + k_width << "\" y1=\"" << y + 20 << "\" y2=\""
             << y + 20 << "\" stroke=\"#e2e8f0\"/>\n";
        std::array<double, 3> free_from{};
        for (auto const& event : events_) {
            if (event.kind != lane.kind) {
                continue;
            }
            auto const x = axis_.position(event.time);
            auto const is_beat = lane.kind == Kind::watchdog;
            out_ << "<circle cx=\"" << x << "\" cy=\"" << y + 20 << "\" r=\"" << (is_beat ? 2 : 4.5) << "\" fill=\""
                 << lane.colour << "\"><title>" << escaped(event.text) << "</title></circle>\n";
            if (!is_beat) {
                draw_label(event.text, x + 7, y, lane.colour, free_from);
            }
        }
    }

    void draw_clients(std::vector<std::string> const& clients, double y) {
        std::map<std::string, double> rows;
        for (auto const& client : clients) {
            rows[client] = y;
            text(k_left - 12, y + 16, client, "#1a202c", "end");
            y += k_client_lane;
        }
        for (auto const& bar : client_bars(events_)) {
            draw_bar(bar, rows.at(bar.client));
        }
    }

    void draw_bar(Client_bar const& bar, double y) {
        auto const x = axis_.position(bar.begin);
        auto const width = std::max(axis_.position(bar.end) - x, 3.0);
        out_ << "<rect x=\"" << x << "\" y=\"" << y + 3 << "\" width=\"" << width << "\" height=\"18\" rx=\"2\" fill=\""
             << colour_of(bar.outcome) << "\"><title>" << escaped(bar.state) << "</title></rect>\n";
        if (width > k_label_width * static_cast<double>(bar.state.size())) {
            text(x + width / 2, y + 16, bar.state, "#1a202c", "middle");
        }
    }

    // Above the line where there is room, else in one of two rows below it.
    void draw_label(std::string const& label, double x, double y, char const* colour,
                    std::array<double, 3>& free_from) {
        constexpr std::array<double, 3> offsets{14, 36, 48};
        std::size_t row = 0;
        while (row + 1 < offsets.size() && x < free_from.at(row)) {
            ++row;
        }
        text(x, y + offsets.at(row), label, colour);
        free_from.at(row) = x + k_label_width * static_cast<double>(label.size());
    }

    void draw_times(double y) {
        double free_from = 0;
        for (auto const& [time, unused] : axis_.marks()) {
            auto const x = axis_.position(time);
            if (x < free_from) {
                continue;
            }
            free_from = x + 46;
            std::ostringstream label;
            label.precision(2);
            label << std::fixed << static_cast<double>(time - axis_.marks().front().first) / 1e9;
            out_ << "<line x1=\"" << x << "\" x2=\"" << x << "\" y1=\"" << k_top << "\" y2=\"" << y + 4
                 << "\" stroke=\"#edf2f7\" stroke-dasharray=\"2 3\"/>\n";
            text(x, y + 20, label.str(), "#4a5568", "middle");
        }
    }

    Timeline events_;
    Axis axis_;
    std::ostringstream out_;
};

}  // namespace

std::string draw(Timeline const& events) {
    return Picture(events).draw();
}

}  // namespace bench::tour
