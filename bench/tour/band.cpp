#include "bench/tour/band.h"

#include "bench/tour/axis.h"
#include "bench/tour/lanes.h"
#include "bench/tour/svg.h"

#include <algorithm>
#include <map>
#include <sstream>
#include <string>

namespace bench::tour {

using vehicle::Event;
using vehicle::Kind;
using vehicle::Timeline;

namespace {

constexpr double k_states = 84;  // with room for slanted names below
constexpr double k_below = 60;   // for the times, and between bands

std::map<std::string, char const*> const& colours_of_states() {
    static auto const& colours = *new std::map<std::string, char const*>{
        {"startingup", "#f6e05e"}, {"running", "#68d391"},     {"runnmcontrolled", "#4fd1c5"},
        {"postrun", "#63b3ed"},    {"preparing", "#f6ad55"},   {"prepared4sd", "#b794f4"},
        {"resuming", "#90cdf4"},   {"shuttingdown", "#fc8181"}};
    return colours;
}

/// Draws a life of the daemon: its states as boxes, and below them what happened meanwhile.
class Band {
 public:
    Band(Timeline const& events, std::int64_t start) : events_(events), start_(start), axis_(events, k_left, k_width) {}

    std::string draw() {
        draw_times(band_height(events_) - k_below);
        draw_states();
        draw_event_lanes(out_, events_, axis_, k_states);
        draw_client_lanes(out_, events_, axis_, k_states + event_lanes_height());
        return out_.str();
    }

 private:
    void draw_states() {
        put_text(out_, k_left - 12, 28, "State", "#1a202c", "end");
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
        out_ << "<rect x=\"" << x << "\" y=\"" << 8 << "\" width=\"" << width
             << "\" height=\"34\" rx=\"3\" stroke=\"#ffffff\" fill=\""
             << (colour != colours_of_states().end() ? colour->second : "#cbd5e0") << "\"><title>"
             << escaped(event.text) << "</title></rect>\n";
        if (width > k_label_width * static_cast<double>(event.text.size())) {
            put_text(out_, x + width / 2, 29, event.text, "#1a202c", "middle");
        } else {
            out_ << "<text transform=\"translate(" << x + width / 2 + 4 << ',' << 56
                 << ") rotate(28)\" fill=\"#1a202c\" font-size=\"10\">" << escaped(event.text) << "</text>\n";
        }
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
            label << std::fixed << static_cast<double>(time - start_) / 1e9;
            out_ << "<line x1=\"" << x << "\" x2=\"" << x << "\" y1=\"" << 0 << "\" y2=\"" << y + 4
                 << "\" stroke=\"#edf2f7\" stroke-dasharray=\"2 3\"/>\n";
            put_text(out_, x, y + 20, label.str(), "#4a5568", "middle");
        }
    }

    Timeline const& events_;
    std::int64_t const start_;
    Axis const axis_;
    std::ostringstream out_;
};

}  // namespace

double band_height(Timeline const& events) {
    return k_states + event_lanes_height() + client_lanes_height(events) + k_below;
}

std::string draw_band(Timeline const& events, std::int64_t start) {
    return Band(events, start).draw();
}

}  // namespace bench::tour
