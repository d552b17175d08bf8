#include "tools/trace/timeline.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

namespace statectl::trace {

namespace {

constexpr double k_width = 1000;
constexpr double k_bar = 22;   // height of the states
constexpr double k_lane = 14;  // of an application
constexpr double k_axis = 16;
constexpr double k_narrowest = 1.5;
constexpr std::size_t k_most_lanes = 12;

constexpr std::array<char const*, 8> k_states{"Starting up", "Running",    "NM Controlled", "Post Run",
                                              "Preparing",   "PreparedSD", "Resuming",      "Shutting down"};

std::string class_of(std::string const& state) {
    auto const* const found = std::find(k_states.begin(), k_states.end(), state);
    return "s" + std::to_string(found == k_states.end() ? 7 : found - k_states.begin());
}

std::string coordinate(double value) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.1f", value);
    return text.data();
}

std::string rectangle(std::string const& name, double x, double y, double width, double height,
                      std::string const& title) {
    return "<rect class=\"" + name + "\" x=\"" + coordinate(x) + "\" y=\"" + coordinate(y) + "\" width=\"" +
           coordinate(std::max(width, k_narrowest)) + "\" height=\"" + coordinate(height) + "\"><title>" +
           escaped(title) + "</title></rect>\n";
}

std::string label(double x, double y, char const* name, char const* anchor, std::string const& text) {
    return "<text class=\"" + std::string(name) + "\" x=\"" + coordinate(x) + "\" y=\"" + coordinate(y) +
           "\" text-anchor=\"" + anchor + "\">" + escaped(text) + "</text>\n";
}

/// The picture of one cycle, drawn from top to bottom.
class Drawing {
 public:
    explicit Drawing(Cycle const& cycle)
        : cycle_(cycle), life_(*cycle.life), scale_(k_width / std::max(cycle.end - cycle.begin, 0.001)) {}

    std::string take() {
        states();
        late_groups();
        y_ = k_bar + 2;
        lanes();
        axis();
        return "<svg viewBox=\"0 0 1000 " + coordinate(y_) + "\" role=\"img\">\n" + text_ + "</svg>\n";
    }

 private:
    double place(double time) const { return (std::clamp(time, cycle_.begin, cycle_.end) - cycle_.begin) * scale_; }

    void states() {
        constexpr double k_letter = 6.5;
        for (auto i = cycle_.first; i < cycle_.last; ++i) {
            auto const& stay = life_.stays[i];
            auto const end = stay.end.value_or(life_.end);
            auto const x = place(stay.begin);
            auto const width = place(end) - x;
            text_ += rectangle(class_of(stay.state), x, 0, width, k_bar,
                               stay.state + ", " + duration_text(end - stay.begin) + ": " + stay.cause);
            if (width > k_letter * static_cast<double>(stay.state.size()) + 6) {
                text_ += label(x + width / 2, k_bar - 7, "", "middle", stay.state);
            }
        }
    }

    void late_groups() {
        for (auto const& sequence : life_.sequences) {
            for (auto const& group : sequence.groups) {
                bool const is_late = std::any_of(group.answers.begin(), group.answers.end(),
                                                 [](Answer const& answer) { return answer.status == "timed out"; });
                if (is_late && group.begin >= cycle_.begin && group.begin <= cycle_.end) {
                    auto const x = place(group.begin);
                    text_ += rectangle("late", x, 1, place(group.end.value_or(life_.end)) - x, k_bar - 2,
                                       sentence_of(sequence, life_));
                }
            }
        }
    }

    // One line for each application and what it held, however often.
    void lanes() {
        std::vector<std::pair<std::string, std::string>> shown;
        for (auto const& hold : life_.holds) {
            auto const end = hold.end.value_or(life_.end);
            if (end < cycle_.begin || hold.begin > cycle_.end) {
                continue;
            }
            auto lane = std::find(shown.begin(), shown.end(), std::make_pair(hold.who, hold.what));
            if (lane == shown.end()) {
                if (shown.size() == k_most_lanes) {
                    continue;
                }
                lane = shown.emplace(shown.end(), hold.who, hold.what);
                auto const y = y_ + static_cast<double>(shown.size() - 1) * k_lane;
                text_ += label(std::min(place(hold.begin), k_width - 200), y + k_lane - 4, "dim", "start",
                               hold.who + ": " + hold.what);
            }
            auto const x = place(hold.begin);
            text_ += rectangle("hold", x, y_ + static_cast<double>(lane - shown.begin()) * k_lane + k_lane - 3,
                               place(end) - x, 2.5,
                               hold.who + " held " + hold.what + " for " + duration_text(end - hold.begin));
        }
        y_ += static_cast<double>(shown.size()) * k_lane + 2;
    }

    void axis() {
        auto const length = cycle_.end - cycle_.begin;
        auto step = std::pow(10.0, std::floor(std::log10(std::max(length, 0.001))));
        step = length / step < 2 ? step / 5 : length / step < 5 ? step / 2 : step;
        text_ += rectangle("axis", 0, y_, k_width, 1, duration_text(length));
        auto const count = std::lround(length / step);
        for (long i = 0; i < count; ++i) {
            auto const time = static_cast<double>(i) * step;
            text_ += rectangle("axis", time * scale_, y_, 1, 4, "");
            text_ += label(time * scale_ + 3, y_ + 12, "dim", "start", duration_text(time));
        }
        y_ += k_axis;
    }

    Cycle const& cycle_;
    Life const& life_;
    double const scale_;
    double y_{0};
    std::string text_;
};

}  // namespace

std::string escaped(std::string const& text) {
    std::string safe;
    for (char const character : text) {
        switch (character) {
            case '&':
                safe += "&amp;";
                break;
            case '<':
                safe += "&lt;";
                break;
            case '>':
                safe += "&gt;";
                break;
            case '"':
                safe += "&quot;";
                break;
            default:
                safe += static_cast<unsigned char>(character) < ' ' ? ' ' : character;
        }
    }
    return safe;
}

std::string timeline(Cycle const& cycle) {
    return Drawing(cycle).take();
}

std::string legend() {
    std::string text;
    double x = 0;
    constexpr double k_step = 125;
    for (auto const* const state : k_states) {
        text += rectangle(class_of(state), x, 2, 12, 12, state) + label(x + 17, 12, "", "start", state);
        x += k_step;
    }
    return "<svg viewBox=\"0 0 1000 18\" role=\"img\">\n" + text + "</svg>\n";
}

}  // namespace statectl::trace
