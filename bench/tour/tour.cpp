#include "bench/tour/tour.h"

#include "bench/json_lines/clock.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>
#include <optional>
#include <utility>

namespace bench::tour {

namespace {

std::string describe(Expectation const& expectation) {
    if (expectation.is_absence) {
        return std::string("no ") + vehicle::name(expectation.kind);
    }
    auto const& act = expectation.act;
    return std::string(vehicle::name(expectation.kind)) + " \"" + (act ? text_of(*act) : expectation.text) + "\"";
}

/// A kind of event, and for clients which of them.
using Thread = std::pair<vehicle::Kind, std::string>;

Thread thread_of(Expectation const& expectation) {
    bool const is_of_client = expectation.kind == vehicle::Kind::client && expectation.act;
    return {expectation.kind, is_of_client ? expectation.act->who : ""};
}

// A request's number is not expected.
bool is_act(vehicle::Event const& event, Expectation const& expectation) {
    auto act = event.act;
    act.status = act.what == "asked" ? 0 : act.status;
    return event.kind == expectation.kind && act == *expectation.act;
}

double seconds_since(std::int64_t start, std::int64_t time) {
    return static_cast<double>(time - start) / 1e9;
}

void print_step(std::size_t number, Step const& step, double at, bool all_seen) {
    std::printf("%8.3f s  %2zu  %-55s %s\n", at, number, step.name.c_str(), all_seen ? "seen" : "NOT SEEN");
    std::fflush(stdout);
}

/// Follows the machine through one step after the other. What is expected of one kind, or of one client, happens in the
/// order of the steps of a life: each is followed by a position of its own.
class Walk {
 public:
    Walk(vehicle::Machine& machine, std::chrono::milliseconds patience) : machine_(machine), patience_(patience) {}

    void go(Step const& step) {
        begin_ = machine_.events().size();
        next_[{vehicle::Kind::watchdog, ""}] = begin_;  // beats come all the time; only fresh ones count
        if (step.begins_life) {
            next_.clear();
            life_ = begin_;
        }
        all_seen_ = true;
        latest_ = 0;
        act(step);
        for (auto const& expectation : step.expectations) {
            note(step.name, describe(expectation), expectation.is_absence ? absence(expectation) : await(expectation));
        }
        print_step(++number_, step, seconds_since(start_, latest_ == 0 ? monotonic_ns() : latest_), all_seen_);
    }

    std::vector<Finding> findings;

 private:
    void act(Step const& step) {
        try {
            step.action(machine_);
        } catch (std::exception const& error) {
            note(step.name, error.what(), std::nullopt);
        }
    }

    std::optional<std::int64_t> await(Expectation const& expectation) {
        auto& from = next_.try_emplace(thread_of(expectation), life_).first->second;
        auto const position =
            expectation.act
                ? machine_.await([&](auto const& event) { return is_act(event, expectation); }, from, patience_)
                : machine_.await(expectation.kind, expectation.text, from, patience_);
        if (!position) {
            return std::nullopt;
        }
        from = *position + 1;
        return machine_.events()[*position].time;
    }

    std::optional<std::int64_t> absence(Expectation const& expectation) const {
        auto const& events = machine_.events();
        bool const is_absent = std::none_of(events.begin() + static_cast<std::ptrdiff_t>(begin_), events.end(),
                                            [&](auto const& event) { return event.kind == expectation.kind; });
        return is_absent ? std::optional(latest_) : std::nullopt;
    }

    void note(std::string const& step, std::string const& what, std::optional<std::int64_t> time) {
        findings.push_back({step, what, time.has_value(), time.value_or(0)});
        all_seen_ = all_seen_ && time;
        latest_ = std::max(latest_, time.value_or(0));
    }

    vehicle::Machine& machine_;
    std::chrono::milliseconds const patience_;
    std::map<Thread, std::size_t> next_;
    std::size_t life_{0};
    std::int64_t const start_{monotonic_ns()};
    std::size_t number_{0};
    std::size_t begin_{0};
    std::int64_t latest_{0};
    bool all_seen_{true};
};

}  // namespace

std::vector<Finding> walk(vehicle::Machine& machine, std::vector<Step> const& steps, std::chrono::milliseconds patience,
                          std::chrono::milliseconds pause) {
    Walk walk(machine, patience);
    for (auto const& step : steps) {
        walk.go(step);
        machine.watch(pause);
    }
    return walk.findings;
}

}  // namespace bench::tour
