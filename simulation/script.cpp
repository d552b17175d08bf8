#include "simulation/script.h"

#include "base/hex.h"
#include "simulation/rules.h"
#include "simulation/script_line.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace simulation {

namespace {

using Act = std::function<void(Life&)>;
using Answer = Client_manner::Answer;

constexpr std::size_t k_most_lines = 10000;
constexpr std::size_t k_longest_line = 2000;
constexpr std::size_t k_most_bits = 32;

/// The diagnostic clients by their short names.
std::string client_name(std::string name) {
    return name == "dcm" || name == "dem" ? "diag::" + name : name;
}

bool is_manner(std::string_view word) {
    return word == "after" || word == "silent" || word == "fails" || word == "invalid" || word == "crashes" ||
           word == "succeeds" || word == "twice";
}

/// "after 3s", "silent", "fails after 1s"; nothing is an answer at once.
Client_manner manner(Script_line& line) {
    Client_manner manner;
    if (is_manner(line.peek()) && line.peek() != "after") {
        constexpr std::array k_answers{Answer::succeeds,   Answer::silent,  Answer::fails,
                                       Answer::is_invalid, Answer::crashes, Answer::succeeds_twice};
        manner.answer = k_answers.at(
            line.one_of("a client's manner", {"succeeds", "silent", "fails", "invalid", "crashes", "twice"}));
    }
    if (manner.answer != Answer::silent && line.take("after")) {
        manner.after = line.time("the time after which it answers");
    }
    return manner;
}

Bits bits(Script_line& line) {
    Bits bits;
    while (!line.at_end() && line.peek() != "ac") {
        auto const byte = line.next("a byte");
        auto const value = base::from_hex(byte);
        if (!value || value->size() != 1) {
            line.refuse_last('"' + byte + "\" is no byte of two digits 0 to 9 and a to f");
        }
        bits.push_back(value->front());
        if (bits.size() > k_most_bits) {
            line.refuse_last("these are too many bytes");
        }
    }
    if (bits.empty()) {
        line.refuse_next("here the bits are missing, bytes like 00 01");
    }
    return bits;
}

std::uint8_t ac_number(Script_line& line) {
    return static_cast<std::uint8_t>(line.take("ac") ? line.whole_number("an AC number", 255) : 0);
}

/// An event that would not be seen by itself: its words are noted.
Act noted(Script_line words, Act act) {
    auto const who = words.next("who");
    auto const what = words.rest("what");
    return [who, what, act = std::move(act)](Life& life) {
        life.note(who, what);
        act(life);
    };
}

Act key(Script_line& line) {
    auto const key = line.next("a key");
    if (!Hypervisor::has_key(key)) {
        line.refuse_last("there is no key \"" + key + "\": r, n, s, p, power");
    }
    return [key](Life& life) { life.hypervisor().press(key); };
}

Act com_call(Script_line& line, std::string const& name, bool requests) {
    auto const wanted = bits(line);
    auto const ac = ac_number(line);
    if (requests) {
        return [name, wanted, ac](Life& life) { life.applications().request_com(name, wanted, ac); };
    }
    return [name, wanted](Life& life) { life.applications().release_com(name, wanted); };
}

Act application(Script_line& line, Script& script) {
    auto const name = line.next("an instance");
    bool const requests = line.one_of("what an application does", {"requests", "releases"}) == 0;
    switch (line.one_of("what it is about", {"ecu", "com", "wake-up"})) {
        case 0:
            script.ecu.insert(name);
            return [name, requests](Life& life) {
                requests ? life.applications().request_ecu(name) : life.applications().release_ecu(name);
            };
        case 1:
            script.com.insert(name);
            return com_call(line, name, requests);
        default:
            script.wake_up.insert(name);
            auto const ac = ac_number(line);
            return [name, requests, ac](Life& life) {
                requests ? life.applications().request_car_wake_up(name, ac)
                         : life.applications().release_car_wake_up(name);
            };
    }
}

Act diagnostics(Script_line& line) {
    line.one_of("what diagnostics do", {"restart"});
    auto const type = static_cast<std::uint8_t>(line.whole_number("a kind of restart", 255));
    return [type](Life& life) { life.applications().request_restart(type); };
}

Act network(Script_line& line) {
    switch (line.one_of("what the network does", {"sleeps", "wakes", "follows"})) {
        case 0:
            return [](Life& life) { life.network().sleep(); };
        case 1:
            return [](Life& life) { life.network().wake(); };
        default:
            return [](Life& life) { life.network().follow_bus(); };
    }
}

Act others(Script_line& line) {
    bool const needed = line.one_of("what the others do", {"need", "release"}) == 0;
    line.one_of("what they need", {"network"});
    return [needed](Life& life) { life.network().others_need(needed); };
}

Act manager(Script_line& line) {
    auto const does = line.one_of("what the network manager does", {"offers", "withdraws", "fails", "works"});
    return [does](Life& life) {
        switch (does) {
            case 0:
                return life.network().offer();
            case 1:
                return life.network().withdraw();
            default:
                return life.network().fail(does == 2);
        }
    };
}

Script::Client coming_client(Script_line& line, std::string const& name) {
    auto const how = manner(line);
    auto const state = line.take("in") ? line.next("the state that it is in") : "kOn";
    return {client_name(name), how, state};
}

Act client(Script_line& line, Script_line const& words) {
    auto const name = client_name(line.next("a client"));
    if (is_manner(line.peek())) {
        auto const how = manner(line);
        return noted(words, [name, how](Life& life) { life.clients().behave(name, how); });
    }
    switch (line.one_of("what a client does", {"connects", "disconnects", "reports", "after", "silent", "fails",
                                               "invalid", "crashes", "succeeds", "twice"})) {
        case 0: {
            auto const comes = coming_client(line, name);
            return [comes](Life& life) { life.clients().connect(comes.name, comes.manner, comes.state); };
        }
        case 1:
            return [name](Life& life) { life.clients().disconnect(name); };
        default: {
            auto const state = line.next("a state");
            return [name, state](Life& life) { life.clients().report(name, state); };
        }
    }
}

Act control_file(Script_line& line, void (Life::*file)(Control_files::Manner)) {
    bool const takes = line.one_of("what the file does", {"takes", "refuses"}) == 0;
    auto const how = takes ? Control_files::Manner::takes : Control_files::Manner::refuses;
    return [file, how](Life& life) { (life.*file)(how); };
}

Act service_manager(Script_line& line) {
    auto const does = line.one_of("what the service manager does", {"grants", "refuses", "silent", "stops"});
    if (does == 3) {
        return [](Life& life) { life.terminate(); };
    }
    constexpr std::array k_manners{Service_manager::Manner::grants, Service_manager::Manner::refuses,
                                   Service_manager::Manner::silent};
    auto const after = line.take("after") ? line.time("the time after which it answers") : Time(0);
    return [how = k_manners.at(does), after](Life& life) { life.service_manager().behave(how, after); };
}

/// One that changes how a neighbour behaves.
Act change(Script_line& line) {
    auto const words = line;
    switch (
        line.one_of("an event", {"network", "others", "manager", "status-file", "restart-file", "service-manager"})) {
        case 0:
            return noted(words, network(line));
        case 1:
            return noted(words, others(line));
        case 2:
            return noted(words, manager(line));
        case 3:
            return noted(words, control_file(line, &Life::status_file));
        case 4:
            return noted(words, control_file(line, &Life::restart_file));
        default:
            return noted(words, service_manager(line));
    }
}

Act act(Script_line& line, Script& script) {
    auto changed = line;
    switch (line.one_of("an event", {"key", "application", "diagnostics", "client", "network", "others", "manager",
                                     "status-file", "restart-file", "service-manager"})) {
        case 0:
            return key(line);
        case 1:
            return application(line, script);
        case 2:
            return diagnostics(line);
        case 3:
            return client(line, changed);
        default:
            line = changed;
            return change(line);
    }
}

void setting(Script_line& line, Script& script) {
    auto key = line.next("the name of a setting");
    script.settings.push_back({std::move(key), line.rest("its value, in JSON"), line.number()});
}

void clients(Script_line& line, Script& script) {
    do {
        auto const name = line.next("a client");
        script.clients.push_back(coming_client(line, name));
    } while (line.take(","));
}

void event(Script_line& line, Script& script) {
    auto const at = line.time("a time");
    script.events.push_back({at, act(line, script)});
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

bool is_limit(std::string_view word) {
    return word == "within" || word == "before" || word == "after";
}

/// The words up to what limits the time.
std::string words(Script_line& line, char const* what) {
    auto text = line.next(what);
    while (!line.at_end() && !is_limit(line.peek())) {
        text += line.take(",") ? "," : ' ' + line.next(what);
    }
    return text;
}

Script::Wanted wanted(Script_line& line) {
    if (line.take("word")) {
        return {Kind::word, "written", line.next("a state word")};
    }
    if (line.take("client")) {
        auto const name = client_name(line.next("a client"));
        return {Kind::client, name, words(line, "what the client does")};
    }
    if (line.take("machine-state")) {
        return {Kind::machine_state, "granted", line.next("a machine state")};
    }
    if (line.take("power-off")) {
        return {Kind::power_off, "", words(line, "a line to the power-off service")};
    }
    if (line.take("restart")) {
        return {Kind::restart, "written", line.next("a word")};
    }
    if (line.take("request") || line.take("release")) {
        line.refuse_last("what is requested of the network is expected as \"network-state\" or \"user-data\"");
    }
    if (line.take("network-state")) {
        return {Kind::network, "", words(line, "the bytes")};
    }
    if (line.take("user-data")) {
        return {Kind::request, "user data", words(line, "the bytes")};
    }
    if (line.take("end")) {
        return {Kind::end, "", ""};
    }
    auto const state = words(line, "what is expected");
    if (!is_state(state)) {
        line.refuse_last('"' + state +
                         "\" is neither a state nor word, client, machine-state, power-off, restart, "
                         "network-state, user-data or end");
    }
    return {Kind::state, state, ""};
}

void limits(Script_line& line, Script::Expectation& expectation) {
    if (line.take("within")) {
        auto const span = line.time("a time");
        line.one_of("what follows", {"of"});
        expectation.from = line.time("a time");
        expectation.to = expectation.from + span;
    } else if (line.take("before")) {
        expectation.to = line.time("a time") - Time(1);
    } else if (line.take("after")) {
        expectation.from = line.time("a time");
    }
}

void expect(Script_line& line, Script& script) {
    auto whole = line;
    Script::Expectation expectation{line.number(), whole.rest("what is expected")};
    if (line.take("words")) {
        expectation.kind = Script::Expectation::Kind::words;
        do {
            expectation.words.push_back(line.next("a state word"));
        } while (line.take(","));
    } else {
        if (line.take("no")) {
            expectation.kind = Script::Expectation::Kind::none;
        }
        expectation.wanted = wanted(line);
        limits(line, expectation);
    }
    script.expectations.push_back(std::move(expectation));
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
