#include "one_life.h"

#include "busy_threads.h"

#include <algorithm>
#include <csignal>
#include <exception>

namespace faults {

namespace {

using bench::vehicle::Event;
using bench::vehicle::Kind;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

// What must come is awaited for longer than any bound of the daemon; what a complaint excuses, no longer than it takes
// when it comes.
constexpr milliseconds k_patience{30'000};
constexpr milliseconds k_patience_with_excuse{2'500};
constexpr milliseconds k_end{70'000};
constexpr milliseconds k_poll{10};
constexpr int k_fatal = 1;
constexpr int k_warning = 3;
constexpr int k_start_failed = 255;
constexpr int k_by_signal = 128;

bool begins_with(std::string const& text, std::string const& begin) {
    return text.rfind(begin, 0) == 0;
}

}  // namespace

char const* name_of(Outcome outcome) {
    switch (outcome) {
        case Outcome::unreached:
            return "not reached";
        case Outcome::as_ever:
            return "as ever";
        case Outcome::told:
            return "told, goes on";
        case Outcome::refused:
            return "start refused";
        case Outcome::stopped:
            return "stopped";
        case Outcome::ended_by_engine:
            return "ended by engine";
        default:
            return "WRONG";
    }
}

One_life::One_life(bench::vehicle::Vehicle& machine, Life const& life, std::set<std::string> const& usual)
    : machine_(machine), life_(life), usual_(usual) {}

Verdict One_life::lead(bool may_be_stopped, bool is_of_engine) {
    machine_.update(milliseconds(0));
    machine_.take_events();
    for (auto const& step : life_.steps) {
        if (!is_over_) {
            go(step);
        }
    }
    await_end();
    for (auto const& text : complaints()) {
        if (usual_.count(text) == 0) {
            verdict_.told.push_back(text);
        }
    }
    if (verdict_.outcome != Outcome::wrong) {
        verdict_.outcome = verdict_.told.empty() ? Outcome::as_ever : Outcome::told;
        judge_words();
        judge_end(may_be_stopped, is_of_engine);
    }
    return verdict_;
}

void One_life::go(Step const& step) {
    from_ = machine_.events().size();
    begin_ = steady_clock::now();
    if (step.checks_health) {
        check_health();
        return;
    }
    act(step);
    for (auto const& expected : step.expected) {
        if (!is_over_) {
            await(step, expected);
        }
    }
}

// An application that has heard of the last daemon's end too late, or not yet of this one's services, tries again.
void One_life::act(Step const& step) {
    for (auto const begin = steady_clock::now();;) {
        try {
            step.action(machine_);
            return;
        } catch (std::exception const& error) {
            machine_.update(k_poll);
            auto const taken = steady_clock::now() - begin;
            if (end() || (has_complained() && taken > k_patience_with_excuse)) {
                return;
            }
            if (taken > k_patience) {
                wrong(step.name + ": " + error.what());
                return;
            }
        }
    }
}

// A word may be lost, and what was asked of others may be dropped, when a message says so; the machine's way goes on.
void One_life::await(Step const& step, Expected const& expected) {
    auto const begin = steady_clock::now();
    while (!is_seen(expected)) {
        auto const taken = steady_clock::now() - begin;
        auto const taken_by_step = steady_clock::now() - begin_;
        bool const is_excused =
            has_complained() && expected.kind != Kind::ended &&
            (expected.kind != Kind::state_word || (!expected.instead.empty() && is_logged(expected.instead)));
        if (end() || (is_excused && taken_by_step > k_patience_with_excuse)) {
            is_over_ = end().has_value();
            return;
        }
        if (taken > (expected.kind == Kind::ended ? k_end : k_patience)) {
            wrong(step.name + ": no " + bench::vehicle::name(expected.kind) + " \"" + expected.text + '"');
            return;
        }
        machine_.update(k_poll);
    }
}

bool One_life::is_seen(Expected const& expected) const {
    auto const& events = machine_.events();
    return std::any_of(events.begin() + static_cast<std::ptrdiff_t>(from_), events.end(),
                       [&expected](Event const& event) {
                           return event.kind == expected.kind && begins_with(event.text, expected.text);
                       });
}

bool One_life::is_logged(std::string const& text) const {
    return is_seen({Kind::log, text});
}

bool One_life::has_complained() const {
    auto const all = complaints();
    return std::any_of(all.begin(), all.end(), [this](auto const& text) { return usual_.count(text) == 0; });
}

std::set<std::string> One_life::complaints() const {
    std::set<std::string> texts;
    for (auto const& event : machine_.events()) {
        if (event.kind == Kind::log && event.level <= k_warning && event.application == "STMG") {
            texts.insert(event.text);
        }
    }
    return texts;
}

bool One_life::has_died() const {
    return std::any_of(machine_.events().begin(), machine_.events().end(),
                       [](Event const& event) { return event.kind == Kind::log && event.level == k_fatal; });
}

std::optional<int> One_life::end() const {
    for (auto const& event : machine_.events()) {
        if (event.kind == Kind::ended) {
            return std::stoi(event.text);
        }
    }
    return std::nullopt;
}

// Whoever lost the server finds it again, and nobody burns the processor.
void One_life::check_health() {
    auto const begin = steady_clock::now();
    while (!end() && !everybody_is_connected()) {
        if (steady_clock::now() - begin > k_patience) {
            wrong("the notification server is dead");
            return;
        }
        machine_.update(k_poll);
    }
    auto const thread = busy_thread(machine_.daemon().pid(), [this] { machine_.update(k_poll); });
    if (!end() && !thread.empty()) {
        wrong("a thread spins: " + thread);
    }
}

bool One_life::everybody_is_connected() {
    auto const clients = machine_.clients();
    return std::all_of(clients.begin(), clients.end(), [this](auto const& client) {
        return machine_.tell(client.name, {{"do", "list"}}).value("connected", false);
    });
}

// A daemon that goes on although its life is over is ended by force, and what it left is taken in.
void One_life::await_end() {
    if (!end() && verdict_.outcome != Outcome::wrong) {
        wrong("it goes on when its life is over");
    }
    if (!end()) {
        machine_.signal_daemon(SIGKILL);
    }
    machine_.await_end(k_end);
    // Where many wait for a processor, the log daemon's last lines are late.
    from_ = 0;
    auto const begin = steady_clock::now();
    while (end() == 0 && !has_last_line() && steady_clock::now() - begin < k_patience) {
        machine_.update(k_poll);
    }
}

bool One_life::has_last_line() const {
    return is_logged("AP_StateManger daemon shutting down");
}

// A driver that takes a part of a word has got that part, and the log says so.
void One_life::judge_words() {
    auto next = life_.words.begin();
    for (auto const& event : machine_.events()) {
        if (event.kind != Kind::state_word || (has_complained() && is_part_of_a_word(event.text))) {
            continue;
        }
        next = std::find(next, life_.words.end(), event.text);
        if (next == life_.words.end()) {
            wrong("the word \"" + event.text + "\" that does not belong there");
            return;
        }
        ++next;
    }
}

bool One_life::is_part_of_a_word(std::string const& text) const {
    return std::any_of(life_.words.begin(), life_.words.end(),
                       [&text](auto const& word) { return word != text && begins_with(word, text); });
}

void One_life::judge_end(bool may_be_stopped, bool is_of_engine) {
    from_ = 0;
    int const status = end().value_or(-1);
    bool const is_running = is_seen({Kind::state_word, "running"});
    bool const has_word = is_seen({Kind::state_word, ""});
    if (status == 0) {
        if (is_logged("Failed to initialize AP_StateManger!")) {
            verdict_.outcome = is_running ? Outcome::wrong : Outcome::refused;
        } else if (!has_last_line()) {
            wrong("the log is silent at the end");
        } else if (is_logged("SIGTERM received!") && may_be_stopped) {
            verdict_.outcome = Outcome::stopped;
        }
    } else if (status == k_by_signal + SIGTERM && may_be_stopped && !has_word) {
        verdict_.outcome = Outcome::stopped;
    } else if (status == k_start_failed && !has_word && has_died()) {
        verdict_.outcome = Outcome::refused;
    } else if (status > k_by_signal && !has_word && is_of_engine) {
        verdict_.outcome = Outcome::ended_by_engine;
    } else {
        wrong("ended with status " + std::to_string(status));
    }
}

void One_life::wrong(std::string const& reason) {
    verdict_.outcome = Outcome::wrong;
    verdict_.reason = reason;
    is_over_ = true;
}

}  // namespace faults
