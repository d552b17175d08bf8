// Looks for an order of what was concurrent in which the real daemon's life is that of the simulated one: one walk
// along the trace after the other (trace_walk.cpp), each with an order that went farther than the last.
#include "simulation/trace_check.h"

#include "simulation/configuration.h"
#include "simulation/life.h"
#include "simulation/play.h"
#include "simulation/trace_walk.h"
#include "simulation/trace_words.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace simulation {

namespace {

using dlt::Message;
using Finding = Trace_verdict::Kind;

constexpr std::size_t k_most_orders = 200;

/// What came from outside between the two waits before a place, and in the wait between them.
std::vector<std::size_t> concurrent_before(Trace_life const& trace, std::size_t place) {
    constexpr int k_cycles = 3;
    constexpr std::size_t k_most = 12;
    std::vector<std::size_t> places;
    int cycles = 0;
    for (place = std::min(place + 1, trace.size()); place > 0 && cycles < k_cycles && places.size() < k_most; --place) {
        cycles += begins_wait(trace[place - 1]) ? 1 : 0;
        if (is_input(trace[place - 1]) && !says(trace[place - 1], "calling callback")) {
            places.push_back(place - 1);
        }
    }
    return places;
}

/// Whether it is about what calls for the ECU released that came at once: each sees what the last of them wants, and a
/// trace doesn't tell when each of them had the mutex. A call has it within some cycles and a second of its line.
bool is_of_calls_at_once(Trace_life const& trace, Outcome_of_walk const& outcome) {
    constexpr int k_cycles = 3;
    constexpr std::uint32_t k_second = 10'000;  // ticks of a trace
    if (outcome.verdict.text.find("State_manager::ecu_alive_release network") == std::string::npos) {
        return false;
    }
    auto place = std::min(outcome.place + 1, trace.size());
    auto const now = trace[place - 1].ticks.value_or(0);
    std::set<std::string> callers;
    int cycles = 0;
    for (; place > 0 && (cycles < k_cycles || now - trace[place - 1].ticks.value_or(0) < k_second); --place) {
        auto const& message = trace[place - 1];
        cycles += begins_wait(message) ? 1 : 0;
        if (family_of(text_of(message)) == Family::ecu) {
            callers.insert(argument(message, 1));
        }
    }
    return callers.size() > 1;
}

/// Without results of clients at its end, of which some may have been cut off.
Trace_life without_cut_results(Trace_life life) {
    auto const last = std::find_if(life.rbegin(), life.rend(), [](Message const& message) {
        return begins_wait(message) || ends_wait(message) || is_goodbye(message);
    });
    auto const results =
        std::find_if(last.base(), life.end(), [](Message const& message) { return says(message, "calling callback"); });
    if (last == life.rend() || !is_goodbye(*last)) {
        life.erase(results, life.end());
    }
    return life;
}

/// Changes the order in one place, so that the walk goes farther. Nothing when no such place is found.
std::optional<Outcome_of_walk> go_farther(Trace_life const& life, std::string const& configuration,
                                          Outcome_of_walk const& best, Order& order, std::size_t& orders) {
    for (auto const place : concurrent_before(life, best.place)) {
        auto other = order;
        if (!other.insert(place).second) {
            other.erase(place);
        }
        if (++orders > k_most_orders) {
            return Outcome_of_walk{
                {Finding::undecidable, best.verdict.steps,
                 "after " + std::to_string(k_most_orders) + " orders of what was concurrent: " + best.verdict.text},
                best.place};
        }
        auto const outcome = walk(life, configuration, other);
        if (outcome.verdict.kind != Finding::disagrees || outcome.place > best.place) {
            order = other;
            return outcome;
        }
    }
    return std::nullopt;
}

/// A life in whose trace nothing is damaged.
Trace_verdict check_whole(Trace_life const& life, std::string const& configuration) {
    if (!says(life.front(), "Configuration for hostname: ") && !says(life.front(), "Parsing configuration file:")) {
        return {Finding::undecidable, 0, "it begins in the middle of a life"};
    }
    if (std::none_of(life.begin(), life.end(), begins_wait)) {
        return {Finding::undecidable, 0,
                "the driver's cycles are not in it: the level of the log must be debug or verbose"};
    }
    auto const told = without_cut_results(life);
    Order order;
    auto best = walk(told, configuration, order);
    std::size_t orders = 1;
    while (best.verdict.kind == Finding::disagrees) {
        auto const better = go_farther(told, configuration, best, order, orders);
        if (!better) {
            break;
        }
        best = *better;
    }
    if (best.verdict.kind == Finding::disagrees && is_of_calls_at_once(told, best)) {
        return {Finding::undecidable, best.verdict.steps, "what calls at once released: " + best.verdict.text};
    }
    return best.verdict;
}

}  // namespace

Trace_verdict check_as_told(Trace_life const& life) {
    std::string configuration;
    try {
        configuration = configuration_in(life);
        if (configuration.empty()) {
            configuration = configuration_of({}, std::nullopt);
        }
        Life const refused_here({configuration});
    } catch (std::exception const& error) {
        return {Finding::undecidable, 0, std::string("the configuration in the trace can't be used: ") + error.what()};
    }
    return check(life, configuration);
}

Trace_verdict check(Trace_life const& life, std::string const& configuration) {
    auto const gap =
        std::find_if(life.begin(), life.end(), [](auto const& message) { return message.gap.has_value(); });
    if (gap == life.end()) {
        return check_whole(life, configuration);
    }
    // The message before it may be a damaged one.
    auto verdict = check_whole({life.begin(), gap - (gap - life.begin() > 1 ? 1 : 0)}, configuration);
    if (verdict.kind != Finding::disagrees) {
        verdict.kind = Finding::undecidable;
        verdict.text = "the trace is damaged at byte " + std::to_string(*gap->gap);
    }
    return verdict;
}

}  // namespace simulation
