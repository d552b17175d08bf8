// A walk has the real driver's cycles in step with the simulated driver's: what the trace tells came from outside is
// done to the simulated life, and what that life then tells must be the trace's next lines, each thread's in its order.
#include "simulation/trace_walk.h"

#include "simulation/life.h"
#include "simulation/report.h"
#include "simulation/trace_neighbours.h"
#include "simulation/trace_words.h"

#include <algorithm>
#include <chrono>
#include <deque>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
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

/// For what another thread has to do when it comes to it: it has come to it within some cycles and a second.
class Patience {
 public:
    void begin_wait(bool is_due, Time now) {
        waits_ = is_due ? waits_ + 1 : 0;
        since_ = waits_ > 1 ? since_ : now;
        is_over_ = waits_ > 3 && now - since_ > std::chrono::seconds(1);
    }
    bool is_over() const { return is_over_; }

 private:
    int waits_{0};
    Time since_{0};
    bool is_over_{false};
};

class Walk {
 public:
    Walk(Trace_life const& trace, std::string const& configuration, Order const& order)
        : trace_(trace), order_(order), life_(options(configuration)) {}

    Trace_verdict run();

    /// Of the message that it ended at.
    std::size_t place() const { return place_; }

 private:
    Life_options options(std::string const& configuration);
    void hear(Entry const& entry);
    void cycle();
    void catch_up();
    void walk();
    bool ends_before_cycle();
    void pass(std::size_t place);
    void compare(Message const& message);
    void hold_releases();
    void hold_server(Time now);
    void pass_time(Message const& message);
    Time time_of(Message const& message) const;

    std::size_t next_wait(std::size_t place, bool (*is_it)(Message const&)) const;
    bool has_goodbye() const;
    void apply(std::size_t place);
    bool apply_network(Message const& message);
    void offer();
    void answer(std::size_t place);
    void complete(std::size_t place);
    void stop(std::size_t place);
    bool is_postponed(Family family) const;
    void settle();

    void decide(Finding kind, std::string const& why);
    std::string place_text() const;

    Trace_life const& trace_;
    Order const& order_;
    std::map<Family, std::deque<std::string>> expected_;
    std::optional<Trace_verdict> verdict_;
    std::set<std::size_t> applied_;
    std::vector<std::size_t> postponed_;
    std::size_t place_{0};
    std::size_t steps_{0};
    std::size_t owed_releases_{0};   ///< of the ECU, since the cycle before
    std::vector<std::size_t> held_;  ///< told before the network was there
    Patience deadline_;              ///< for the server that stops waiting for answers
    Patience owed_;                  ///< for the server that has something to tell
    bool has_network_{false};
    bool has_left_{false};  ///< the simulated driver, its loop
    std::optional<std::uint32_t> first_ticks_;
    Life life_;
};

Life_options Walk::options(std::string const& configuration) {
    // A cycle takes as long as the trace says.
    auto root = nlohmann::json::parse(configuration);
    root["ap_statemanager"]["StateManagerMainPeriod"] = 1;
    Life_options options{root.dump()};
    options.with_log = true;
    options.manager_is_there = false;
    options.power_off_takes = std::chrono::hours(1'000'000);
    options.observer = [this](Entry const& entry) { hear(entry); };
    options.on_wait = [this] { cycle(); };
    return options;
}

void Walk::hear(Entry const& entry) {
    if (entry.kind == Kind::log) {
        auto const family = family_of(entry.what);
        if (family != Family::none) {
            expected_[family].push_back(entry.what);
        }
    }
}

Trace_verdict Walk::run() {
    first_ticks_ = trace_.front().ticks;
    life_.network().report_only();
    life_.clients().hold_completions();
    life_.run(std::chrono::hours(1'000'000));
    has_left_ = true;
    if (!verdict_) {
        walk();
    }
    if (!verdict_ && has_goodbye() && !expected_[Family::driver].empty()) {
        decide(Finding::disagrees, "nothing more");
    }
    return verdict_.value_or(Trace_verdict{Finding::agrees, steps_, ""});
}

// The simulated driver begins to wait. The walk goes on to where the real one's wait is over.
void Walk::cycle() {
    if (verdict_) {
        return;
    }
    settle();
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
        if (!verdict_ && is_input(trace_[place]) && applied_.count(place) == 0) {
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
            life_.hypervisor().key_down(key_of(argument(message, 1)));
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

// All that the driver does in a cycle it tells in that cycle.
void Walk::pass(std::size_t place) {
    auto const& message = trace_[place];
    if (begins_wait(message)) {
        if (!expected_[Family::driver].empty()) {
            decide(Finding::disagrees, expected_[Family::driver].front());
        }
        hold_releases();
        hold_server(time_of(message));
        return;
    }
    auto const family = family_of(text_of(message));
    if (!has_network_ && !has_left_ && needs_network(family)) {
        held_.push_back(place);
        return;
    }
    if (family != Family::none && is_postponed(family)) {
        postponed_.push_back(place);
        return;
    }
    bool const comes_now = !has_left_ && applied_.count(place) == 0 && is_input(message);
    if (comes_now) {
        auto const& expected = expected_[family];
        bool const is_told = !expected.empty() && is_same_line(expected.front(), text_of(message));
        if (!is_told && order_.count(place) != 0) {
            postponed_.push_back(place);
            return;
        }
        if (!is_told) {
            apply(place);
        }
    }
    compare(message);
}

void Walk::compare(Message const& message) {
    auto const text = text_of(message);
    auto const family = family_of(text);
    if (family == Family::none) {
        if (is_unexplained_warning(message)) {
            decide(Finding::undecidable, "what made it say so is not simulated");
        }
        return;
    }
    auto& expected = expected_[family];
    bool const is_over = has_left_ && family != Family::driver;
    if (expected.empty() || !is_same_line(expected.front(), text)) {
        if (!is_over) {
            decide(Finding::disagrees, expected.empty() ? "nothing" : expected.front());
        }
        return;
    }
    expected.pop_front();
    owed_releases_ -= family == Family::ecu_release && owed_releases_ != 0 ? 1U : 0U;
    ++steps_;
}

// A call that has the mutex late tells in the next cycle at last what it released.
void Walk::hold_releases() {
    auto const& expected = expected_[Family::ecu_release];
    if (owed_releases_ != 0 && !has_left_) {
        decide(Finding::disagrees, expected.front());
    }
    owed_releases_ = expected.size();
}

// So has the server's thread with what is due.
void Walk::hold_server(Time now) {
    auto const& clients = life_.clients();
    deadline_.begin_wait(clients.deadline() && now >= *clients.deadline(), now);
    auto const& expected = expected_[Family::server];
    owed_.begin_wait(clients.has_held_completions() || !expected.empty(), now);
    if (owed_.is_over() && !has_left_) {
        decide(Finding::disagrees, expected.empty() ? "that what clients were asked for is over" : expected.front());
    }
}

Time Walk::time_of(Message const& message) const {
    auto const ticks = message.ticks.value_or(0) - first_ticks_.value_or(0);
    return std::chrono::microseconds(100) * ticks;
}

void Walk::pass_time(Message const& message) {
    constexpr std::uint32_t k_backwards = 0x8000'0000U;
    constexpr auto k_room_for_cycles = std::chrono::milliseconds(100);  // each passes one
    bool const is_later = message.ticks && message.ticks.value() - first_ticks_.value_or(0) < k_backwards;
    if (!has_left_ && is_later && !says(message, "calling callback")) {
        auto until = time_of(message);
        auto const deadline = life_.clients().deadline();
        if (deadline && !deadline_.is_over()) {
            until = std::min<Time>(until, *deadline - k_room_for_cycles);
        }
        if (until > life_.events().now()) {
            life_.events().run_until(until, [] { return false; });
        }
    }
}

/// What is due now happens.
void Walk::settle() {
    life_.events().run_until(life_.events().now(), [] { return false; });
}

bool Walk::has_goodbye() const {
    return std::any_of(trace_.begin(), trace_.end(), is_goodbye);
}

void Walk::apply(std::size_t place) {
    auto const& message = trace_[place];
    applied_.insert(place);
    if (says(message, "SIGTERM received!")) {
        stop(place);
    } else if (says(message, "calling callback")) {
        answer(place);
    } else if (says(message, "Received ") && family_of(text_of(message)) == Family::server) {
        complete(place);
    } else if (!apply_network(message) && !apply_application(message, life_.applications())) {
        apply_client(message, life_.clients());
    }
    settle();
}

bool Walk::apply_network(Message const& message) {
    if (ends_search(message)) {
        offer();
        return true;
    }
    if (says(message, "We received the notification")) {
        life_.network().tell(bits_of(argument(message, 1)));
        return true;
    }
    return false;
}

// The search, the subscription and the first user data take several threads' turns, and in the end the network counts
// as there: all at once here, at that end. Who subscribes is told the state at once.
void Walk::offer() {
    for (auto const& message : trace_) {
        if (says(message, "We received the notification")) {
            life_.network().tell(bits_of(argument(message, 1)));
            break;
        }
    }
    life_.network().offer();
    has_network_ = true;
    bool is_first = true;  // of the states that were told meanwhile
    for (auto const place : std::exchange(held_, {})) {
        if (says(trace_[place], "We received the notification") && !std::exchange(is_first, false)) {
            life_.network().tell(bits_of(argument(trace_[place], 1)));
            settle();
        }
        applied_.insert(place);
        if (!verdict_) {
            compare(trace_[place]);
        }
    }
}

// The results stand behind it, a client a line; who is late has a result as well.
void Walk::answer(std::size_t place) {
    constexpr auto k_patience = std::chrono::seconds(1);
    std::vector<std::string> names;
    for (auto next = place + 1; next < trace_.size() && !says(trace_[next], "calling callback"); ++next) {
        if (says(trace_[next], "State notification client [")) {
            names.push_back(argument(trace_[next], 1));
            life_.clients().behave(names.back(), {answer_of(argument(trace_[next], 2))});
        }
    }
    settle();
    for (auto const& name : names) {
        life_.clients().behave(name, {Client_manner::Answer::silent});
    }
    auto const& expected = expected_[Family::server];
    auto const is_told = [&] {
        return std::any_of(expected.begin(), expected.end(),
                           [](std::string const& line) { return line.rfind("calling callback", 0) == 0; });
    };
    if (!is_told()) {
        life_.events().run_until(std::max(life_.events().now(), time_of(trace_[place]) + k_patience), is_told);
    }
}

// The server's thread tells of it under a mutex that the driver takes as well.
void Walk::complete(std::size_t place) {
    auto before = place;
    while (before > 0 && family_of(text_of(trace_[before - 1])) != Family::server) {
        --before;
    }
    if (before > 0 && says(trace_[before - 1], "calling callback") && applied_.count(before - 1) == 0) {
        applied_.insert(before - 1);
        answer(before - 1);
        settle();
    }
    life_.clients().let_completions();
}

// What comes before the driver has begun is told and lost.
void Walk::stop(std::size_t place) {
    auto const begin = std::find_if(trace_.begin(), trace_.end(), [](Message const& message) {
        return says(message, "AP_StateManger daemon started");
    });
    bool const is_early = begin - trace_.begin() > static_cast<std::ptrdiff_t>(place);
    if (is_early && order_.count(place) == 0) {
        expected_[Family::signal].emplace_back("Shutting down AP_StateManger");
    } else {
        life_.terminate();
    }
}

bool Walk::is_postponed(Family family) const {
    return std::any_of(postponed_.begin(), postponed_.end(),
                       [&](std::size_t place) { return family_of(text_of(trace_[place])) == family; });
}

std::string Walk::place_text() const {
    auto const& message = trace_[std::min(place_, trace_.size() - 1)];
    return "message " + std::to_string(place_ + 1) + ", " + seconds(time_of(message)) + " after the start, in " +
           life_.state();
}

void Walk::decide(Finding kind, std::string const& why) {
    auto const told = place_ < trace_.size() ? text_of(trace_[place_]) : "the end";
    auto const text = kind == Finding::disagrees ? "\n  trace:     " + told + "\n  simulated: " + why
                                                 : ": " + told + " (" + why + ")";
    verdict_ = Trace_verdict{kind, steps_, place_text() + text};
}

}  // namespace

Outcome_of_walk walk(Trace_life const& life, std::string const& configuration, Order const& order) {
    Walk walk(life, configuration, order);
    auto const verdict = walk.run();
    return {verdict, walk.place()};
}

}  // namespace simulation
