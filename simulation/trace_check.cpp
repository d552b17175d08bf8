#include "simulation/trace_check.h"

#include "base/hex.h"
#include "simulation/life.h"
#include "simulation/report.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <deque>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <utility>

namespace simulation {

namespace {

using dlt::Message;
using Finding = Trace_verdict::Kind;

/// The last that the daemon tells when it has found network management.
constexpr char const* k_complete = "Offering CWU services";

constexpr char const* k_goodbye = "AP_StateManger daemon shutting down";

constexpr std::size_t k_most_orders = 200;

/// Whose lines they are. One thread writes them, or several under one mutex.
enum class Family { driver, network, requests, restart, server, signal, none };

struct Words {
    char const* begin;
    Family family;
};

constexpr std::array k_words{Words{"AP_StateManger transition from", Family::driver},
                             Words{"Entering ", Family::driver},
                             Words{"Transition form startup to running not possible", Family::driver},
                             Words{"Requesting ", Family::driver},
                             Words{"Releasing network", Family::driver},
                             Words{"Setting EM machine state", Family::driver},
                             Words{"New command received", Family::driver},
                             Words{"Consumed VirtIO command", Family::driver},
                             Words{"Starting standby sequence", Family::driver},
                             Words{"Starting resume sequence", Family::driver},
                             Words{"Stop sending NM messages", Family::driver},
                             Words{"Start sending NM messages", Family::driver},
                             Words{"UdpNm usage disabled", Family::driver},
                             Words{"Lookup for PM daemon", Family::driver},
                             Words{"Shutting down PM daemon", Family::driver},
                             Words{"Starting ExitApp", Family::driver},
                             Words{"Normal shutdown executed", Family::driver},
                             Words{"Fast shutdown executed", Family::driver},
                             Words{"AP_StateManger daemon started", Family::driver},
                             Words{"AP_StateManger reporting kTerminating", Family::driver},
                             Words{"We received the notification", Family::network},
                             Words{"Ecu state based on NM activity", Family::network},
                             Words{"State_manager::", Family::requests},
                             Words{"Applying user data", Family::requests},
                             Words{"Releasing AC bit", Family::requests},
                             Words{"CWU bit", Family::requests},
                             Words{"RequestDiagnosticRestart", Family::restart},
                             Words{"Received unused Request", Family::restart},
                             Words{"client connected", Family::server},
                             Words{"client disconnected", Family::server},
                             Words{"sending state change request", Family::server},
                             Words{"calling callback", Family::server},
                             Words{"Received ", Family::server},
                             Words{"State notification client [", Family::server},
                             Words{"Client ", Family::server},
                             Words{"Shutting down AP_StateManger", Family::signal}};

/// Warnings that tell nothing about the neighbours' manners.
constexpr std::array k_harmless{"Failed to close event file descriptor", "Could not find ",
                                "client dropped: ", "connection dropped before"};

bool begins(std::string_view text, std::string_view begin) {
    return text.substr(0, begin.size()) == begin;
}

Family family_of(std::string_view text) {
    for (auto const& words : k_words) {
        if (begins(text, words.begin)) {
            return words.family;
        }
    }
    return Family::none;
}

/// Log viewers put a blank between two arguments.
std::string without_blanks(std::string text) {
    text.erase(std::remove(text.begin(), text.end(), ' '), text.end());
    return text;
}

std::string argument(Message const& message, std::size_t place) {
    return place < message.arguments.size() ? message.arguments[place] : std::string();
}

bool says(Message const& message, char const* begin) {
    return begins(argument(message, 0), begin);
}

bool begins_wait(Message const& message) {
    return says(message, "Epoll_wait start");
}
bool ends_wait(Message const& message) {
    return says(message, "Epoll_wait returned");
}

std::string key_of(std::string const& command) {
    static std::map<std::string, std::string> const keys{
        {"Run", "r"}, {"NmControlled", "n"}, {"NMControlledPrepareSD", "s"}, {"PrepareSD", "p"}, {"Shutdown", "power"}};
    auto const found = keys.find(command);
    return found == keys.end() ? "" : found->second;
}

Client_manner::Answer answer_of(std::string const& status) {
    using Answer = Client_manner::Answer;
    if (status == "] succeeded") {
        return Answer::succeeds;
    }
    return status == "] general error" ? Answer::fails : status == "] invalid" ? Answer::is_invalid : Answer::silent;
}

Bits bits_of(std::string const& text) {
    return base::from_hex(text).value_or(Bits());
}

/// Where the order of what is told is not that of what happened: each of these came on the other side of the cycle.
using Order = std::set<std::size_t>;

/// One walk along a trace, beside a simulated life.
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
    void walk();
    bool ends_before_cycle();
    void pass(std::size_t place);
    void compare(Message const& message);
    void pass_time(Message const& message);
    Time time_of(Message const& message) const;

    std::size_t next_wait(std::size_t place, bool (*is_it)(Message const&)) const;
    bool has_goodbye() const;
    bool is_input(Message const& message) const;
    void apply(std::size_t place);
    bool apply_network(Message const& message);
    void offer();
    bool apply_application(Message const& message);
    bool apply_client(Message const& message, std::size_t place);
    void answer(std::size_t place);
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
    std::vector<std::size_t> held_;  ///< told before the network was there
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
    for (auto const place : std::exchange(postponed_, {})) {
        apply(place);
        compare(trace_[place]);
    }
    walk();
    if (verdict_ || place_ == trace_.size()) {
        life_.terminate();
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
        return;
    }
    auto const family = family_of(argument(message, 0));
    if (!has_network_ && !has_left_ && (family == Family::network || family == Family::requests)) {
        held_.push_back(place);
        return;
    }
    bool const comes_now = !has_left_ && applied_.count(place) == 0 && is_input(message);
    if (comes_now) {
        auto const& expected = expected_[family];
        bool const is_told = !expected.empty() && without_blanks(expected.front()) == without_blanks(text_of(message));
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
    constexpr int k_warning = 3;
    auto const text = text_of(message);
    auto const family = family_of(argument(message, 0));
    if (family == Family::none) {
        bool const is_harmless =
            std::any_of(k_harmless.begin(), k_harmless.end(), [&](char const* begin) { return says(message, begin); });
        if (message.level <= k_warning && !is_harmless) {
            decide(Finding::undecidable, "what made it say so is not simulated");
        }
        return;
    }
    auto& expected = expected_[family];
    bool const is_over = has_left_ && family != Family::driver;
    if (expected.empty() || without_blanks(expected.front()) != without_blanks(text)) {
        if (!is_over) {
            decide(Finding::disagrees, expected.empty() ? "nothing" : expected.front());
        }
        return;
    }
    expected.pop_front();
    ++steps_;
}

Time Walk::time_of(Message const& message) const {
    auto const ticks = message.ticks.value_or(0) - first_ticks_.value_or(0);
    return std::chrono::microseconds(100) * ticks;
}

void Walk::pass_time(Message const& message) {
    constexpr std::uint32_t k_backwards = 0x8000'0000U;
    bool const is_later = message.ticks && message.ticks.value() - first_ticks_.value_or(0) < k_backwards;
    if (!has_left_ && is_later && !says(message, "calling callback")) {
        auto const until = time_of(message);
        if (until > life_.events().now()) {
            life_.events().run_until(until, [] { return false; });
        }
    }
}

/// What is due now happens.
void Walk::settle() {
    life_.events().run_until(life_.events().now(), [] { return false; });
}

bool Walk::is_input(Message const& message) const {
    constexpr std::array k_inputs{k_complete,         "We received the notification", "State_manager::handle_",
                                  "client connected", "client disconnected",          "calling callback",
                                  "Client ",          "RequestDiagnosticRestart",     "Received unused Request",
                                  "SIGTERM received!"};
    bool const is_ecu =
        says(message, "State_manager::ecu_alive_request: ") || says(message, "State_manager::ecu_alive_release: ");
    bool const is_own = argument(message, 1) == "Standby call" || argument(message, 1) == "End standby call";
    return (is_ecu && !is_own) ||
           std::any_of(k_inputs.begin(), k_inputs.end(), [&](char const* begin) { return says(message, begin); });
}

bool Walk::has_goodbye() const {
    return std::any_of(trace_.begin(), trace_.end(), [](Message const& message) { return says(message, k_goodbye); });
}

void Walk::apply(std::size_t place) {
    auto const& message = trace_[place];
    applied_.insert(place);
    if (says(message, "SIGTERM received!")) {
        life_.terminate();
    } else if (!apply_network(message) && !apply_application(message)) {
        apply_client(message, place);
    }
    settle();
}

bool Walk::apply_network(Message const& message) {
    if (says(message, k_complete)) {
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
            apply(place);
        }
        applied_.insert(place);
        if (!verdict_) {
            compare(trace_[place]);
        }
    }
}

bool Walk::apply_application(Message const& message) {
    auto& applications = life_.applications();
    auto const id = argument(message, 1);
    auto const number = [&](std::size_t place) {
        return static_cast<std::uint8_t>(std::strtoul(argument(message, place).c_str(), nullptr, 10));
    };
    if (says(message, "State_manager::ecu_alive_request")) {
        applications.request_ecu(id);
    } else if (says(message, "State_manager::ecu_alive_release")) {
        applications.release_ecu(id);
    } else if (says(message, "State_manager::handle_com_alive_request")) {
        applications.request_com(id, bits_of(argument(message, 3)), number(5));
    } else if (says(message, "State_manager::handle_com_alive_release")) {
        applications.release_com(id, bits_of(argument(message, 3)));
    } else if (says(message, "State_manager::handle_cwu_request")) {
        applications.request_car_wake_up(id, number(3));
    } else if (says(message, "State_manager::handle_cwu_release")) {
        applications.release_car_wake_up(id);
    } else if (says(message, "RequestDiagnosticRestart for ")) {
        applications.request_restart(says(message, "RequestDiagnosticRestart for own VM") ? 1 : 5);
    } else if (says(message, "Received unused RequestDiagnosticRestart = ")) {
        auto const text = argument(message, 0);
        auto const digit = text.find_first_of("0123456789");
        applications.request_restart(digit == std::string::npos ? std::uint8_t(0)
                                                                : static_cast<std::uint8_t>(text[digit] - '0'));
    } else {
        return false;
    }
    return true;
}

bool Walk::apply_client(Message const& message, std::size_t place) {
    auto& clients = life_.clients();
    auto const name = argument(message, 1);
    if (says(message, "client connected")) {
        clients.connect(name, {Client_manner::Answer::silent}, argument(message, 3));
    } else if (says(message, "client disconnected")) {
        clients.disconnect(name);
    } else if (says(message, "Client ")) {
        clients.report(name, argument(message, 3));
    } else if (says(message, "calling callback")) {
        answer(place);
    } else {
        return false;
    }
    return true;
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
                           [](std::string const& line) { return begins(line, "calling callback"); });
    };
    if (!is_told()) {
        life_.events().run_until(std::max(life_.events().now(), time_of(trace_[place]) + k_patience), is_told);
    }
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

/// What other threads tell between the two waits before a place, and what they told in the wait between them.
std::vector<std::size_t> concurrent_before(Trace_life const& trace, std::size_t place) {
    constexpr int k_cycles = 3;
    constexpr std::size_t k_most = 12;
    std::vector<std::size_t> places;
    int cycles = 0;
    for (place = std::min(place + 1, trace.size()); place > 0 && cycles < k_cycles && places.size() < k_most; --place) {
        auto const& message = trace[place - 1];
        cycles += begins_wait(message) ? 1 : 0;
        auto const family = family_of(argument(message, 0));
        if (family != Family::none ? family != Family::driver : says(message, "SIGTERM") || says(message, k_complete)) {
            places.push_back(place - 1);
        }
    }
    return places;
}

/// Without results of clients at its end, of which some may have been cut off.
Trace_life without_cut_results(Trace_life life) {
    auto const last = std::find_if(life.rbegin(), life.rend(), [](Message const& message) {
        return begins_wait(message) || ends_wait(message) || says(message, k_goodbye);
    });
    auto const results =
        std::find_if(last.base(), life.end(), [](Message const& message) { return says(message, "calling callback"); });
    if (last == life.rend() || !says(*last, k_goodbye)) {
        life.erase(results, life.end());
    }
    return life;
}

struct Outcome_of_walk {
    Trace_verdict verdict;
    std::size_t place;
};

/// One life lives at a time.
Outcome_of_walk walk(Trace_life const& life, std::string const& configuration, Order const& order) {
    Walk walk(life, configuration, order);
    auto const verdict = walk.run();
    return {verdict, walk.place()};
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

}  // namespace

bool carries_step(Message const& message) {
    return family_of(argument(message, 0)) != Family::none;
}

std::string text_of(Trace_verdict const& verdict) {
    auto const steps = std::to_string(verdict.steps) + " steps";
    switch (verdict.kind) {
        case Finding::agrees:
            return "agrees, " + steps;
        case Finding::disagrees:
            return "DISAGREES after " + steps + ": " + verdict.text;
        default:
            return "not decidable after " + steps + ": " + verdict.text;
    }
}

Trace_verdict check(Trace_life const& life, std::string const& configuration) {
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
    return best.verdict;
}

}  // namespace simulation
