#include "bench/vehicle/timeline.h"

namespace bench::vehicle {

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
