// A script line by line: what it begins with says who reads the rest, here or in script_events.cpp and
// script_expectations.cpp.
#include "simulation/script.h"

#include "simulation/script_clients.h"
#include "simulation/script_events.h"
#include "simulation/script_expectations.h"
#include "simulation/script_line.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

namespace simulation {

namespace {

constexpr std::size_t k_most_lines = 10000;
constexpr std::size_t k_longest_line = 2000;

void setting(Script_line& line, Script& script) {
    auto const key_column = line.column();
    auto key = line.next("the name of a setting");
    auto const value_column = line.column();
    script.settings.push_back({std::move(key), line.rest("a value in JSON"), line.number(), key_column, value_column});
}

void clients(Script_line& line, Script& script) {
    do {
        auto const name = line.next("a client");
        script.clients.push_back(coming_client(line, name));
        script.known_clients.insert(script.clients.back().name);
    } while (line.take(","));
}

void event(Script_line& line, Script& script) {
    auto const column = line.column();
    auto const at = line.time("a time");
    auto words = line;
    auto what = act(line, script);
    script.events.push_back({at, std::move(what), words.rest("an event"), line.number(), column});
}

void manager_at_start(Script_line& line, Script& script) {
    script.manager_is_there = line.one_of("the network manager's place", {"there", "absent"}) == 0;
}

void power_off(Script_line& line, Script& script) {
    switch (line.one_of("the power-off service's manner", {"absent", "takes"})) {
        case 0:
            script.channel_is_there = false;
            break;
        default:
            script.power_off_takes = line.time("the time that it takes");
    }
}

void expect(Script_line& line, Script& script) {
    script.expectations.push_back(expectation(line));
}

void until(Script_line& line, Script& script) {
    auto const time = line.time("a time");
    if (script.until) {
        line.refuse_last("\"until\" was said before, and is said once");
    }
    script.until = time;
}

/// What can only be seen when all lines are read: what would never happen, and so never be missed.
void refuse_what_never_comes(Script const& script) {
    constexpr char const* k_too_late = "this is after the time of \"until\", when nobody looks any more";
    for (auto const& event : script.events) {
        if (event.at > script.end()) {
            throw Script_error(event.line, event.time_column, k_too_late);
        }
    }
    for (auto const& expectation : script.expectations) {
        auto const& wanted = expectation.wanted;
        if (wanted.kind == Kind::client && script.known_clients.count(wanted.who) == 0) {
            std::string all;
            for (auto const& name : script.known_clients) {
                all += (all.empty() ? ": " : ", ") + name;
            }
            throw Script_error(expectation.line, expectation.name_column,
                               '"' + wanted.who + "\" is no client that connects" + all);
        }
        if (expectation.from > script.end()) {
            throw Script_error(expectation.line, expectation.time_column,
                               script.until ? k_too_late : "this is more than five minutes after the last event");
        }
    }
}

void read(Script_line& line, Script& script) {
    using Reader = void (*)(Script_line&, Script&);
    constexpr std::array<Reader, 7> k_readers{setting, clients, event, expect, until, manager_at_start, power_off};
    auto const reader =
        line.one_of("what a line begins with", {"config", "clients", "at", "expect", "until", "manager", "power-off"});
    k_readers.at(reader)(line, script);
    line.require_end();
}

}  // namespace

Time Script::end() const {
    Time last{0};
    for (auto const& event : events) {
        last = std::max(last, event.at);
    }
    return until.value_or(last + std::chrono::minutes(5));
}

Script parse_script(std::string_view text) {
    Script script;
    unsigned number = 0;
    while (!text.empty()) {
        auto const end = text.find('\n');
        if (++number > k_most_lines) {
            throw Script_error(number, 1, "a script has at most " + std::to_string(k_most_lines) + " lines");
        }
        if (std::min(end, text.size()) > k_longest_line) {
            throw Script_error(number, k_longest_line + 1,
                               "a line has at most " + std::to_string(k_longest_line) + " characters");
        }
        Script_line line(number, text.substr(0, end));
        if (!line.at_end()) {
            read(line, script);
        }
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    }
    refuse_what_never_comes(script);
    return script;
}

}  // namespace simulation
