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
    script.settings.push_back(
        {std::move(key), line.rest("its value, in JSON"), line.number(), key_column, value_column});
}

void clients(Script_line& line, Script& script) {
    do {
        auto const name = line.next("a client");
        script.clients.push_back(coming_client(line, name));
    } while (line.take(","));
}

void event(Script_line& line, Script& script) {
    auto const at = line.time("a time");
    auto words = line;
    auto what = act(line, script);
    script.events.push_back({at, std::move(what), words.rest("an event")});
}

void manager_at_start(Script_line& line, Script& script) {
    script.manager_is_there = line.one_of("where the network manager is", {"there", "absent"}) == 0;
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
    script.until = line.time("a time");
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
    return script;
}

}  // namespace simulation
