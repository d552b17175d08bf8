#ifndef XIMO_AP_STATEMANAGER_LONGEST_CALL_H
#define XIMO_AP_STATEMANAGER_LONGEST_CALL_H

#include <chrono>

namespace ximo::ap::statemanager {

/// What a call of the daemon's services may take. A call waits for those of other applications and for the daemon's
/// own, which a network manager that never answers holds up for two seconds each: 18 seconds with the instances of the
/// example configuration (docs/supervision.md). It is served all the same, so its caller waits for that.
inline constexpr std::chrono::seconds k_longest_call{20};

}  // namespace ximo::ap::statemanager

#endif
