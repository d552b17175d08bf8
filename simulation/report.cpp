#include "simulation/report.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>

namespace simulation {

namespace {

constexpr std::size_t k_time_width = 12;

/// When the state of an entry ended; the timeline's end for the last one.
Time left_at(Timeline const& timeline, std::size_t place) {
    for (std::size_t next = place + 1; next < timeline.size(); ++next) {
        if (timeline[next].kind == Kind::state) {
            return timeline[next].at;
        }
    }
    return timeline.back().at;
}

}  // namespace

std::string seconds(Time time) {
    auto const whole = std::to_string(time.count() / 1000000000);
    auto digits = std::to_string(1000000000 + time.count() % 1000000000).substr(1);
    while (digits.size() > 3 && digits.back() == '0') {
        digits.pop_back();
    }
    return whole + '.' + digits + " s";
}

std::string padded(std::string const& text, std::size_t width) {
    return std::string(width - std::min(width, text.size()), ' ') + text;
}

std::string text_of(Entry const& entry) {
    switch (entry.kind) {
        case Kind::state:
            return entry.who + ": " + entry.what;
        case Kind::word:
            return "  word " + entry.what + (entry.who == "written" ? "" : ", " + entry.who);
        case Kind::restart:
            return "  restart word " + entry.what + (entry.who == "written" ? "" : ", " + entry.who);
        case Kind::key:
            return "  key " + entry.what;
        case Kind::client:
            return "  client " + entry.who + " " + entry.what;
        case Kind::machine_state:
            return "  machine state " + entry.what + ", " + entry.who;
        case Kind::request:
            return "  network management: " + entry.who + " " + entry.what;
        case Kind::network:
            return "  network state " + entry.what;
        case Kind::bus:
            return "  bus, " + entry.who + ": " + entry.what;
        case Kind::application:
            return "  application " + entry.who + " " + entry.what;
        case Kind::power_off:
            return "  power-off service: " + entry.what;
        case Kind::neighbour:
            return "  " + entry.who + " " + entry.what;
        case Kind::log:
            return "    " + entry.who + ": " + entry.what;
        case Kind::end:
            return "end: " + entry.what;
    }
    return "";
}

std::string text_of(Outcome const& outcome) {
    std::string text;
    auto const& timeline = outcome.timeline;
    for (std::size_t place = 0; place < timeline.size(); ++place) {
        auto entry = timeline[place];
        if (entry.kind == Kind::state) {
            entry.who += " for " + seconds(left_at(timeline, place) - entry.at);
        }
        text += padded(seconds(entry.at), k_time_width) + "  " + text_of(entry) + '\n';
    }
    text += outcome.verdicts.empty() ? "" : "\n";
    for (auto const& verdict : outcome.verdicts) {
        text += verdict.is_kept ? "kept    " : "MISSED  ";
        text += "line " + std::to_string(verdict.expectation.line) + ": " + verdict.expectation.text + " (" +
                verdict.found + ")\n";
    }
    return text;
}

std::string json_of(Outcome const& outcome) {
    using nlohmann::ordered_json;
    ordered_json document{{"timeline", ordered_json::array()}, {"expectations", ordered_json::array()}};
    for (auto const& entry : outcome.timeline) {
        document["timeline"].push_back(
            {{"at_ns", entry.at.count()}, {"kind", name(entry.kind)}, {"who", entry.who}, {"what", entry.what}});
    }
    for (auto const& verdict : outcome.verdicts) {
        document["expectations"].push_back({{"line", verdict.expectation.line},
                                            {"text", verdict.expectation.text},
                                            {"kept", verdict.is_kept},
                                            {"found", verdict.found}});
    }
    return document.dump(4, ' ', false, ordered_json::error_handler_t::replace) + '\n';
}

}  // namespace simulation
