#include "simulation/play.h"

#include "simulation/report.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <utility>

namespace simulation {

namespace {

// A day of cycles of 50 ms, and more.
constexpr std::uint64_t k_most_cycles = 2'000'000;

bool is_wanted(Script::Wanted const& wanted, Entry const& entry) {
    return entry.kind == wanted.kind && (wanted.who.empty() || wanted.who == entry.who) &&
           (wanted.what.empty() || wanted.what == entry.what);
}

Verdict judge_words(Script::Expectation const& expectation, Timeline const& timeline) {
    std::vector<std::string> words;
    std::string text;
    for (auto const& entry : timeline) {
        if (is_wanted({Kind::word, "written", ""}, entry)) {
            words.push_back(entry.what);
            text += (text.empty() ? "" : ", ") + entry.what;
        }
    }
    return {expectation, words == expectation.words, "they were " + text};
}

Verdict judge(Script::Expectation const& expectation, Timeline const& timeline) {
    if (expectation.kind == Script::Expectation::Kind::words) {
        return judge_words(expectation, timeline);
    }
    bool const is_absence = expectation.kind == Script::Expectation::Kind::none;
    std::string elsewhere;
    for (auto const& entry : timeline) {
        if (!is_wanted(expectation.wanted, entry)) {
            continue;
        }
        if (entry.at >= expectation.from && entry.at <= expectation.to) {
            return {expectation, !is_absence, "at " + seconds(entry.at)};
        }
        elsewhere += (elsewhere.empty() ? "only at " : ", ") + seconds(entry.at);
    }
    return {expectation, is_absence, elsewhere.empty() ? "never" : elsewhere};
}

}  // namespace

bool Outcome::is_kept() const {
    return std::all_of(verdicts.begin(), verdicts.end(), [](auto const& verdict) { return verdict.is_kept; });
}

Life_options options_of(Script const& script, std::string const& configuration) {
    Life_options options{configuration};
    options.manager_is_there = script.manager_is_there;
    options.channel_is_there = script.channel_is_there;
    options.power_off_takes = script.power_off_takes;
    return options;
}

void enact(Script const& script, Life& life) {
    for (auto const& client : script.clients) {
        life.events().at(Time(0),
                         [&life, &client] { life.clients().connect(client.name, client.manner, client.state); });
    }
    for (auto const& event : script.events) {
        life.events().at(event.at, [&life, &event] { event.act(life); });
    }
}

Outcome play(Script const& script, std::string const& configuration, bool with_log) {
    auto options = options_of(script, configuration);
    options.with_log = with_log;
    std::uint64_t cycles = 0;
    std::function<void()> stop;
    options.on_wait = [&] {
        if (++cycles > k_most_cycles) {
            stop();
        }
    };
    Life life(std::move(options));
    stop = [&life] { life.terminate(); };
    enact(script, life);
    life.run(script.end());
    if (cycles > k_most_cycles) {
        throw Too_many_cycles("a life has at most " + std::to_string(k_most_cycles) +
                              " cycles: it needs an earlier \"until\" or a longer StateManagerMainPeriod");
    }
    Outcome outcome{life.timeline(), {}, life.longest_cycle()};
    for (auto const& expectation : script.expectations) {
        outcome.verdicts.push_back(judge(expectation, outcome.timeline));
    }
    return outcome;
}

}  // namespace simulation
