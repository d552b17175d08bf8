#ifndef SIMULATION_SCRIPT_H
#define SIMULATION_SCRIPT_H

#include "simulation/life.h"

#include <functional>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace simulation {

/// A life as a person writes it: a line is a setting, clients, an event or an expectation (ap_whatif(1) has them all).
struct Script {
    struct Setting {
        std::string key;    ///< "KnockOutTimer", "NmUserDataConfig.CabBitsEnabled"
        std::string value;  ///< JSON
        unsigned line;
        unsigned key_column;
        unsigned value_column;
    };
    struct Client {
        std::string name;
        Client_manner manner;
        std::string state;
    };
    struct Event {
        Time at;
        std::function<void(Life&)> act;
        std::string text{};  ///< as it was written: "status-file takes after 2s"
        unsigned line{0};
        unsigned time_column{0};
    };
    /// An entry of the timeline with this kind, and with `who` and `what` where these are not empty.
    struct Wanted {
        Kind kind{Kind::state};
        std::string who{};
        std::string what{};
    };
    struct Expectation {
        enum class Kind { some, none, words };

        unsigned line;
        std::string text;  ///< as it was written
        Kind kind{Kind::some};
        Wanted wanted{};
        Time from{0};          ///< seen not earlier,
        Time to{Time::max()};  ///< and not later
        std::vector<std::string> words{};
        unsigned name_column{0};  ///< of the client
        unsigned time_column{0};  ///< of `from`
    };

    std::vector<Setting> settings;
    std::vector<Client> clients;
    bool manager_is_there{true};
    bool channel_is_there{true};
    Time power_off_takes{0};
    std::vector<Event> events;
    std::vector<Expectation> expectations;
    std::optional<Time> until;
    std::set<std::string> known_clients;  ///< that connect at some time

    // The instances that its applications call.
    std::set<std::string> ecu;
    std::set<std::string> com;
    std::set<std::string> wake_up;

    /// When nobody looks any more: as written, or five minutes after its last event.
    Time end() const;
};

/// What is wrong with a script, with its place: "3:14: there is no key x: r, n, s, p, power".
class Script_error : public std::runtime_error {
 public:
    Script_error(unsigned line, unsigned column, std::string const& what)
        : std::runtime_error(std::to_string(line) + ':' + std::to_string(column) + ": " + what) {}
};

/// Throws `Script_error`.
Script parse_script(std::string_view text);

}  // namespace simulation

#endif
