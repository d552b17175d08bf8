// Each event of a script becomes a function that a life calls when its time has come: a word says who, the next words
// what.
#include "simulation/script_events.h"

#include "base/hex.h"
#include "simulation/script_clients.h"

#include <array>
#include <cstdint>
#include <utility>

namespace simulation {

namespace {

using Act = std::function<void(Life&)>;

constexpr std::size_t k_most_bits = 32;

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
    auto const does =
        line.one_of("what the network manager does", {"offers", "withdraws", "fails", "works", "takes", "silent"});
    auto const takes = does == 4 ? line.time("the time that a call takes") : does == 5 ? Network::k_patience : Time(0);
    return [does, takes](Life& life) {
        switch (does) {
            case 0:
                return life.network().offer();
            case 1:
                return life.network().withdraw();
            default:
                life.network().fail(does == 2);
                return life.network().answer_after(takes);
        }
    };
}

Act client(Script_line& line, Script_line const& words, Script& script) {
    auto const name = client_name(line.next("a client"));
    if (is_manner(line.peek())) {
        auto const how = manner(line);
        return noted(words, [name, how](Life& life) { life.clients().behave(name, how); });
    }
    switch (line.one_of("what a client does", {"connects", "disconnects", "reports", "after", "silent", "fails",
                                               "invalid", "crashes", "succeeds", "twice"})) {
        case 0: {
            auto const comes = coming_client(line, name);
            script.known_clients.insert(name);
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

Act control_file(Script_line& line, void (Life::*file)(Control_files::Manner, Time)) {
    constexpr std::array k_manners{Control_files::Manner::takes, Control_files::Manner::refuses,
                                   Control_files::Manner::is_deaf};
    auto const how = k_manners.at(line.one_of("what the file does", {"takes", "refuses", "deaf"}));
    auto const after = line.take("after") ? line.time("the time after which a write is over") : Time(0);
    return [file, how, after](Life& life) { (life.*file)(how, after); };
}

Act keyboard(Script_line& line) {
    line.one_of("what the keyboard is", {"lost"});
    return [](Life& life) { life.hypervisor().lose_keyboard(); };
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
    switch (line.one_of(
        "an event", {"network", "others", "manager", "status-file", "restart-file", "service-manager", "keyboard"})) {
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
        case 5:
            return noted(words, service_manager(line));
        default:
            return noted(words, keyboard(line));
    }
}

}  // namespace

std::function<void(Life&)> act(Script_line& line, Script& script) {
    auto changed = line;
    switch (line.one_of("an event", {"key", "application", "diagnostics", "client", "network", "others", "manager",
                                     "status-file", "restart-file", "service-manager", "keyboard"})) {
        case 0:
            return key(line);
        case 1:
            return application(line, script);
        case 2:
            return diagnostics(line);
        case 3:
            return client(line, changed, script);
        default:
            line = changed;
            return change(line);
    }
}

}  // namespace simulation
