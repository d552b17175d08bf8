#include "bench/vehicle/timeline.h"

#include "base/hex.h"

#include <tuple>
#include <utility>

namespace bench::vehicle {

bool operator==(Act const& left, Act const& right) {
    return std::tie(left.who, left.what, left.of, left.status) ==
           std::tie(right.who, right.what, right.of, right.status);
}

std::string text_of(Act const& act) {
    auto text = act.who + ' ' + act.what;
    if (!act.of.empty()) {
        text += ' ' + act.of;
    }
    return act.what == "answered" ? text + ' ' + std::to_string(act.status) : text;
}

Event event_of(std::int64_t time, Kind kind, Act act) {
    Event event{time, kind, text_of(act)};
    event.act = std::move(act);
    return event;
}

Event event_of_octets(std::int64_t time, Kind kind, std::vector<std::uint8_t> octets) {
    Event event{time, kind, base::to_hex(octets)};
    event.octets = std::move(octets);
    return event;
}

char const* name(Kind kind) {
    switch (kind) {
        case Kind::key:
            return "key";
        case Kind::state_word:
            return "state word";
        case Kind::restart_word:
            return "restart word";
        case Kind::machine_state:
            return "machine state";
        case Kind::notification:
            return "notification";
        case Kind::watchdog:
            return "watchdog";
        case Kind::log:
            return "log";
        case Kind::power_off:
            return "power-off";
        case Kind::bus:
            return "bus";
        case Kind::network_state:
            return "network state";
        case Kind::user_data:
            return "user data";
        case Kind::client:
            return "client";
        case Kind::application:
            return "application";
        case Kind::ended:
            return "ended";
    }
    return "";
}

}  // namespace bench::vehicle
