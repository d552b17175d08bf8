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
    client,         ///< text: name, then "connected" and state, "asked" and state, "answered", state and status,
                    ///< "disconnected" or "crashed"
    application,    ///< text: "1 requests com_alive" once application 1 has done so
    ended,          ///< the daemon's process ended; text: its exit status
};

struct Event {
    std::int64_t time;  ///< nanoseconds of CLOCK_MONOTONIC
    Kind kind;
    std::string text;
    int level{0};               ///< of a log message, 1 fatal to 6 verbose
    std::string context{};      ///< of a log message
    std::string application{};  ///< of a log message
};

using Timeline = std::vector<Event>;

/// The name of a kind as it stands on the screen.
char const* name(Kind kind);

}  // namespace bench::vehicle

#endif
