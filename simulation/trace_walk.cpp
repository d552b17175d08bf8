// A walk has the real driver's cycles in step with the simulated driver's: what the trace tells came from outside is
// done to the simulated life, and what that life then tells must be the trace's next lines, each thread's in its order.
#include "simulation/trace_walk.h"

#include "simulation/life.h"
#include "simulation/report.h"
#include "simulation/trace_inputs.h"
#include "simulation/trace_steps.h"
#include "simulation/trace_words.h"

#include <algorithm>
#include <chrono>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace simulation {

namespace {

using dlt::Message;
using Finding = Trace_verdict::Kind;

bool needs_network(Family family) {
    return family == Family::network || family == Family::requests || family == Family::ecu ||
           family == Family::ecu_release;
}

class Walk {
 public:
    Walk(Trace_life const& trace, std::string const& configuration, Order const& order)
        : trace_(trace), order_(order), life_(options(configuration)), inputs_(trace, life_, steps_) {}

    Trace_verdict run();

    /// Of the message that it ended at.
    std::size_t place() const { return place_; }

 private:
    Life_options options(std::string const& configuration);
    void cycle();
    void catch_up();
    void walk();
    bool ends_before_cycle();
    void pass(std::size_t place);
    void compare(Message const& message);
    void begin_wait(Time now);
    void pass_time(Message const& message);

    std::size_t next_wait(std::size_t place, bool (*is_it)(Message const&)) const;
    bool has_goodbye() const;
    void apply(std::size_t place);
    bool is_postponed(Family family) const;

    void decide(Finding kind, std::string const& why);
    std::string place_text() const;

    Trace_life const& trace_;
    Order const& order_;
    Trace_steps steps_;
    std::optional<Trace_verdict> verdict_;
    std::vector<std::size_t> postponed_;
    std::size_t place_{0};
    bool has_left_{false};  ///< the simulated driver, its loop
    Life life_;
    Trace_inputs inputs_;
};

Life_options Walk::options(std::string const& configuration) {
    // A cycle takes as long as the trace says.
    auto root = nlohmann::json::parse(configuration);
    root["ap_statemanager"]["StateManagerMainPeriod"] = 1;
    Life_options options{root.dump()};
    options.with_log = true;
    options.manager_is_there = false;
    options.power_off_takes = std::chrono::hours(1'000'000);
    options.observer = [this](Entry const& entry) { steps_.hear(entry); };
    options.on_wait = [this] { cycle(); };
    return options;
}

Trace_verdict Walk::run() {
    life_.network().report_only();
    life_.clients().hold_completions();
    life_.run(std::chrono::hours(1'000'000));
    has_left_ = true;
    if (!verdict_) {
        walk();
    }
    if (!verdict_ && has_goodbye() && steps_.owed_by_driver()) {
        decide(Finding::disagrees, "nothing more");
    }
    return verdict_.value_or(Trace_verdict{Finding::agrees, steps_.count(), ""});
}

// The simulated driver begins to wait. The walk goes on to where the real one's wait is over.
void Walk::cycle() {
    if (verdict_) {
        return;
    }
    inputs_.settle();
    catch_up();
    walk();
    if (place_ == trace_.size()) {
        catch_up();
    }
    if (verdict_ || place_ == trace_.size()) {
        life_.terminate();
    }
}

void Walk::catch_up() {
    for (auto const place : std::exchange(postponed_, {})) {
        if (!verdict_ && is_input(trace_[place]) && !inputs_.is_applied(place)) {
            apply(place);
        }
        if (!verdict_) {
            compare(trace_[place]);
        }
    }
}

void Walk::walk() {
    while (!verdict_ && place_ < trace_.size()) {
        pass_time(trace_[place_]);
        if (ends_wait(trace_[place_])) {
            if (ends_before_cycle()) {
                return;
            }
        } else {
            pass(place_);
        }
        place_ += verdict_ ? 0 : 1;
    }
}

/// Lets the simulated driver have its cycle; false when it has none any more.
bool Walk::ends_before_cycle() {
    if (has_left_) {
        decide(Finding::disagrees, "the end of the daemon");
        return false;
    }
    auto const end = next_wait(place_ + 1, begins_wait);
    for (auto place = place_ + 1; place < end; ++place) {
        auto const& message = trace_[place];
        if (says(message, "New command received")) {
            inputs_.press(message);
        } else if (order_.count(place) != 0 && is_input(message)) {
            apply(place);
        }
    }
    ++place_;
    return true;
}

std::size_t Walk::next_wait(std::size_t place, bool (*is_it)(Message const&)) const {
    while (place < trace_.size() && !is_it(trace_[place])) {
        ++place;
    }
    return place;
}

// What was held back until the network came counts when it has.
void Walk::apply(std::size_t place) {
    inputs_.apply(place, !inputs_.is_before_the_driver(place) || order_.count(place) != 0);
    for (auto const held : inputs_.held_back()) {
        if (!verdict_) {
            compare(trace_[held]);
        }
    }
}

void Walk::pass(std::size_t place) {
    auto const& message = trace_[place];
    if (begins_wait(message)) {
        return begin_wait(inputs_.time_of(message));
    }
    auto const family = family_of(text_of(message));
    if (!inputs_.has_network() && !has_left_ && needs_network(family)) {
        return inputs_.hold_back(place);
    }
    if (family != Family::none && is_postponed(family)) {
        return postponed_.push_back(place);
    }
    bool const comes_now = !has_left_ && !inputs_.is_applied(place) && is_input(message) && !steps_.is_next(message);
    if (comes_now && order_.count(place) != 0) {
        return postponed_.push_back(place);
    }
    if (comes_now) {
        apply(place);
    }
    compare(message);
}

void Walk::begin_wait(Time now) {
    auto const decide_on = [this](std::optional<std::string> const& owed) {
        if (owed) {
            decide(Finding::disagrees, *owed);
        }
    };
    decide_on(steps_.owed_by_driver());
    auto const released = steps_.owed_releases();
    auto const served = steps_.owed_by_server(life_.clients(), now);
    if (!has_left_) {
        decide_on(released);
        decide_on(served);
    }
}

void Walk::compare(Message const& message) {
    auto const family = family_of(text_of(message));
    if (family == Family::none) {
        if (is_unexplained_warning(message)) {
            decide(Finding::undecidable, "what made it say so is not simulated");
        }
        return;
    }
    auto const instead = steps_.take(message);
    if (instead && (!has_left_ || family == Family::driver)) {
        decide(Finding::disagrees, *instead);
    }
}

void Walk::pass_time(Message const& message) {
    constexpr std::uint32_t k_backwards = 0x8000'0000U;
    constexpr auto k_room_for_cycles = std::chrono::milliseconds(100);  // each passes one
    bool const is_later = message.ticks && message.ticks.value() - trace_.front().ticks.value_or(0) < k_backwards;
    if (!has_left_ && is_later && !says(message, "calling callback")) {
        auto until = inputs_.time_of(message);
        auto const deadline = life_.clients().deadline();
        if (deadline && !steps_.is_deadline_over()) {
            until = std::min<Time>(until, *deadline - k_room_for_cycles);
        }
        if (until > life_.events().now()) {
            life_.events().run_until(until, [] { return false; });
        }
    }
}

bool Walk::has_goodbye() const {
    return std::any_of(trace_.begin(), trace_.end(), is_goodbye);
}

bool Walk::is_postponed(Family family) const {
    return std::any_of(postponed_.begin(), postponed_.end(),
                       [&](std::size_t place) { return family_of(text_of(trace_[place])) == family; });
}

std::string Walk::place_text() const {
    auto const& message = trace_[std::min(place_, trace_.size() - 1)];
    return "message " + std::to_string(place_ + 1) + ", " + seconds(inputs_.time_of(message)) +
           " after the start, in " + life_.state();
}

void Walk::decide(Finding kind, std::string const& why) {
    auto const told = place_ < trace_.size() ? text_of(trace_[place_]) : "the end";
    auto const text = kind == Finding::disagrees ? "\n  trace:     " + told + "\n  simulated: " + why
                                                 : ": " + told + " (" + why + ")";
    verdict_ = Trace_verdict{kind, steps_.count(), place_text() + text};
}

}  // namespace

Outcome_of_walk walk(Trace_life const& life, std::string const& configuration, Order const& order) {
    Walk walk(life, configuration, order);
    auto const verdict = walk.run();
    return {verdict, walk.place()};
}

}  // namespace simulation
