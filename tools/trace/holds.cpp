#include "tools/trace/holds.h"

#include "base/hex.h"
#include "tools/trace/message_words.h"

#include <algorithm>
#include <cstdint>

namespace statectl::trace {

namespace {

using dlt::Message;

std::string trimmed(std::string const& text) {
    auto const begin = text.find_first_not_of(' ');
    return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

// "07 00 01" as bytes; none when a trace has something else there.
std::vector<std::uint8_t> bytes_of(std::string const& text) {
    return base::from_hex(text).value_or(std::vector<std::uint8_t>());
}

// Both texts' bytes, combined one by one; the shorter one goes on with zeros.
template <class Operation>
std::string combined(std::string const& left, std::string const& right, Operation operation) {
    auto all = bytes_of(left);
    auto others = bytes_of(right);
    all.resize(std::max(all.size(), others.size()));
    others.resize(all.size());
    std::transform(all.begin(), all.end(), others.begin(), all.begin(), operation);
    return base::to_hex(all);
}

bool is_empty(std::string const& bits) {
    return bits.find_first_not_of("0 ") == std::string::npos;
}

}  // namespace

bool Holds::hear(Message const& message, double now) {
    auto const& who = argument(message, 1);
    if (says(message, "State_manager::ecu_alive_request: ") && who != "End standby call") {
        hold("ECU alive", who, "", now);
    } else if (says(message, "State_manager::ecu_alive_release: ") && who != "Standby call") {
        release("ECU alive", who, "", now);
    } else if (says(message, "State_manager::ecu_alive_release network")) {
        release_all("ECU alive", now);  // also where the level of the log hides each release
    } else if (says(message, "State_manager::handle_com_alive_request(")) {
        auto const bits = trimmed(argument(message, 3));
        if (!is_empty(bits)) {
            hold("communication", who, bits, now);
        }
    } else if (says(message, "State_manager::handle_com_alive_release(")) {
        release("communication", who, trimmed(argument(message, 3)), now);
    } else if (says(message, "State_manager::handle_cwu_request(")) {
        hold("car wake-up", who, "", now);
    } else if (says(message, "State_manager::handle_cwu_release(")) {
        release("car wake-up", who, "", now);
    } else {
        return false;
    }
    return true;
}

void Holds::hold(std::string const& what, std::string const& who, std::string const& bits, double now) {
    auto const open = std::find_if(holds_.begin(), holds_.end(),
                                   [&](Hold const& one) { return !one.end && one.what == what && one.who == who; });
    if (open == holds_.end()) {
        holds_.push_back({what, who, bits, now, std::nullopt});
    } else {
        open->bits = combined(open->bits, bits,
                              [](unsigned held, unsigned added) { return static_cast<std::uint8_t>(held | added); });
    }
}

void Holds::release(std::string const& what, std::string const& who, std::string const& bits, double now) {
    for (auto& one : holds_) {
        if (one.end || one.what != what || one.who != who) {
            continue;
        }
        auto const rest = combined(one.bits, bits, [](unsigned held, unsigned released) {
            return static_cast<std::uint8_t>(held & ~released);
        });
        if (is_empty(rest)) {
            one.end = now;
        } else {
            one.bits = rest;
        }
    }
}

void Holds::release_all(std::string const& what, double now) {
    for (auto& one : holds_) {
        if (!one.end && one.what == what) {
            one.end = now;
        }
    }
}

std::vector<std::string> Holds::holders(std::vector<std::string> const& kinds) const {
    std::vector<std::string> names;
    for (auto const& one : holds_) {
        bool const counts = !one.end && std::find(kinds.begin(), kinds.end(), one.what) != kinds.end();
        if (counts && std::find(names.begin(), names.end(), one.who) == names.end()) {
            names.push_back(one.who);
        }
    }
    return names;
}

}  // namespace statectl::trace
