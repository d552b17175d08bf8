// What the page calls: a life, from its start, as often as something was added to its script.

#include "simulation/configuration.h"
#include "simulation/play.h"
#include "simulation/report.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace {

using nlohmann::json;
using simulation::Time;

json json_of_page(simulation::Outcome const& outcome) {
    json document{{"timeline", json::array()}, {"expectations", json::array()}};
    for (auto const& entry : outcome.timeline) {
        document["timeline"].push_back({{"at_ns", entry.at.count()},
                                        {"kind", name(entry.kind)},
                                        {"who", entry.who},
                                        {"what", entry.what},
                                        {"text", text_of(entry)}});
    }
    for (auto const& verdict : outcome.verdicts) {
        document["expectations"].push_back({{"line", verdict.expectation.line},
                                            {"text", verdict.expectation.text},
                                            {"kept", verdict.is_kept},
                                            {"found", verdict.found}});
    }
    return document;
}

json play(std::string const& text, std::string const& file, double until, bool with_log) {
    auto script = simulation::parse_script(text);
    if (until > 0) {
        Time const asked(static_cast<Time::rep>(until * 1e6));
        script.until = std::min(script.until.value_or(Time::max()), asked);
    }
    auto const configuration = configuration_of(script, file.empty() ? std::nullopt : std::optional(file));
    return json_of_page(simulation::play(script, configuration, with_log));
}

}  // namespace

extern "C" {

/// Plays the script until a time in milliseconds, or to its end for 0. The configuration is a file's text, or empty for
/// the built-in one. What comes back is JSON and holds until the next call: a timeline with expectations, or an error.
char const* play_life(char const* script, char const* configuration, double until, int with_log);

char const* play_life(char const* script, char const* configuration, double until, int with_log) {
    static std::string answer;
    json document;
    try {
        document = play(script, configuration, until, with_log != 0);
    } catch (std::exception const& error) {
        document = {{"error", error.what()}};
    }
    answer = document.dump(-1, ' ', false, json::error_handler_t::replace);
    return answer.c_str();
}
}
