#ifndef SIMULATION_TIMELINE_H
#define SIMULATION_TIMELINE_H

#include "simulation/time.h"

#include <functional>
#include <string>
#include <vector>

namespace simulation {

/// What can be seen of a life. `who` and `what` of an entry are:
enum class Kind {
    state,          ///< "Post Run", and the cause of the transition
    word,           ///< the fate ("written", "refused"), and the state word
    restart,        ///< the same for words of the restart requests
    key,            ///< "", and the key: "r", "n", "s", "p", "power"
    client,         ///< the client, and what it does or is asked: "connected", "asked kPrepSD", "answered kPrepSD"
    machine_state,  ///< "granted", "refused" or "unanswered", and the machine state that was asked for
    request,        ///< "request", "release" or "user data", and the bits that network management was told
    network,        ///< "", and the network state that was reported
    bus,            ///< a node, "machine" or "others", and how it sees the bus: "bus sleep"
    application,    ///< the instance, and its call; ", failed" behind it when the call failed
    power_off,      ///< "", and a line to the power-off service
    neighbour,      ///< one that came, went or changed its manner, and how
    log,            ///< the level, and the text of a message (only where it was asked for)
    end             ///< "", and why the life is over: "the daemon has ended", "power off", or the end of the look
};

struct Entry {
    Time at;
    Kind kind;
    std::string who;
    std::string what;
};

/// Why a life is over of which nobody looked at more.
inline constexpr char const* k_end_of_the_look = "the end of the look";

/// Why a life is over whose daemon has left its loop.
inline constexpr char const* k_end_of_the_daemon = "the daemon has ended";

/// "state", "word", ...
char const* name(Kind kind);

using Timeline = std::vector<Entry>;

/// Is told of each entry when it is made.
using Observer = std::function<void(Entry const& entry)>;

}  // namespace simulation

#endif
