#include "life_played.h"

#include "held_rules.h"
#include "simulation/configuration.h"
#include "simulation/play.h"

#include <algorithm>
#include <exception>
#include <nlohmann/json.hpp>

namespace lives {

namespace {

Terms terms_of(simulation::Script const& script, std::string const& configuration) {
    auto const settings = nlohmann::json::parse(configuration).at("ap_statemanager");
    auto const seconds = [&](char const* name) { return std::chrono::seconds(settings.at(name).get<unsigned>()); };
    Terms terms;
    terms.nm_usage = settings.at("StateManagerNMUsage");
    terms.requests_on_entry = settings.at("RequestNetworkOnEntryRunState");
    terms.manager_is_there = script.manager_is_there;
    terms.channel_is_there = script.channel_is_there;
    terms.knockout = settings.at("KnockOutTimer");
    terms.period = std::chrono::milliseconds(settings.at("StateManagerMainPeriod").get<unsigned>());
    terms.application = seconds("ApplicationSuspendRequestTimeout");
    terms.diagnosis = seconds("DMSuspendRequestTimeout");
    terms.power_off = seconds("PMSuspendRequestTimeout");
    auto const& layout = settings.at("NmUserDataConfig");
    terms.sends_cab_area = layout.at("CabBitsEnabled");
    terms.layout = {layout.at("UserDataBytes"), layout.at("CWUBitPosition"), layout.at("ACOffset"),
                    layout.at("ACBytes"),       layout.at("CABOffset"),      layout.at("CABBytes")};
    terms.default_pattern = settings.at("DefautNMRequestPattern").get<simulation::Bits>();
    return terms;
}

Played played_to_its_end(Lines const& lines, Coverage& coverage, Planted const& planted) {
    auto const script = simulation::parse_script(text_of(lines));
    auto const configuration = simulation::configuration_of(script, std::nullopt);
    Held_rules rules(terms_of(script, configuration), coverage);
    simulation::Life* life_to_ask = nullptr;
    auto options = simulation::options_of(script, configuration);
    options.with_log = true;
    options.observer = [&](simulation::Entry const& entry) {
        for (auto const& told : planted ? planted(entry) : simulation::Timeline{entry}) {
            rules.take(told);
        }
    };
    options.on_wait = [&] { rules.wait(*life_to_ask); };
    {
        simulation::Life life(std::move(options));
        life_to_ask = &life;
        simulation::enact(script, life);
        life.run(script.end());
    }  // what a daemon does when it goes is heard as well
    return {rules.finding(), rules.steps()};
}

}  // namespace

Played played(Lines const& lines, Coverage& coverage, Planted const& planted) {
    try {
        return played_to_its_end(lines, coverage, planted);
    } catch (std::exception const& error) {
        return {std::string("an exception ends it: ") + error.what(), 0};
    }
}

// Ever smaller pieces are left out, down to one line, until no line can be.
Lines shrunk(Lines lines, std::function<bool(Lines const& lines)> const& fails) {
    for (auto piece = lines.size() / 2; piece > 0;) {
        bool is_shorter = false;
        for (std::size_t begin = 0; begin < lines.size();) {
            auto const end = std::min(begin + piece, lines.size());
            Lines fewer(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(begin));
            fewer.insert(fewer.end(), lines.begin() + static_cast<std::ptrdiff_t>(end), lines.end());
            if (fails(fewer)) {
                lines = std::move(fewer);
                is_shorter = true;
            } else {
                begin = end;
            }
        }
        piece = is_shorter && piece == 1 ? 1 : piece / 2;
    }
    return lines;
}

}  // namespace lives
