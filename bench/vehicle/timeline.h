#ifndef BENCH_VEHICLE_TIMELINE_H
#define BENCH_VEHICLE_TIMELINE_H

#include <cstdint>
#include <string>
#include <vector>

namespace bench::vehicle {

/// What happened on the machine.
enum class Kind {
    key,            ///< the hypervisor pressed a key; text: its name
    state_word,     ///< a word arrived at the status file
    restart_word,   ///< a word arrived at the restart file
    machine_state,  ///< execution management was asked for a machine state; text: the state
    notification,   ///< READY or STOPPING reached the service manager
    watchdog,       ///< a watchdog beat reached the service manager
    log,            ///< the daemon logged; text: the arguments with a blank between them
    power_off,      ///< a command arrived at the power-off service
    bus,            ///< the machine's node came into another state of network management; text: the state
    network_state,  ///< who needs the network, as the machine is told it; text: the bytes
    user_data,      ///< the machine set the user data of its messages; text: the bytes
    client,         ///< a client of the state manager did something or was asked; see `Act`
    application,    ///< an application requested or released something; see `Act`
    ended,          ///< the daemon's process ended; text: its exit status
};

/// Who did what, of a client or an application.
struct Act {
    std::string who{};   ///< its name
    std::string what{};  ///< of a client "connected", "asked", "answered", "disconnected" or "crashed"; of an
                         ///< application "requests" or "releases"
    std::string of{};    ///< the client's state; "com_alive" and the like
    int status{0};       ///< of an answer; of "asked" the request's number
};

bool operator==(Act const& left, Act const& right);

/// An act in one line: "radio answered kOn 0", "1 requests com_alive".
std::string text_of(Act const& act);

struct Event {
    std::int64_t time;  ///< nanoseconds of CLOCK_MONOTONIC
    Kind kind;
    std::string text;
    int level{0};                        ///< of a log message, 1 fatal to 6 verbose
    std::string context{};               ///< of a log message
    std::string application{};           ///< of a log message
    Act act{};                           ///< of a client or an application
    std::vector<std::uint8_t> octets{};  ///< of the network state and the user data
};

/// Events whose text tells their value: an act, or bytes as hexadecimal digits.
Event event_of(std::int64_t time, Kind kind, Act act);
Event event_of_octets(std::int64_t time, Kind kind, std::vector<std::uint8_t> octets);

using Timeline = std::vector<Event>;

/// The name of a kind as it stands on the screen.
char const* name(Kind kind);

}  // namespace bench::vehicle

#endif
