#ifndef TOOLS_CHECK_CONFIG_TIMES_H
#define TOOLS_CHECK_CONFIG_TIMES_H

#include "tools/check_config/members.h"

namespace statectl::check_config {

/// What a configuration says about time, in seconds, each at worst.
struct Times {
    double suspend;    ///< diagnostics, applications, diagnostics: all of them silent
    double resume;     ///< the same way back
    double knock_out;  ///< that Post Run waits for applications
    double cycle;      ///< from one report to the watchdog to the next
    double stop;       ///< from SIGTERM to the end
    double watchdog;   ///< what the unit's WatchdogSec has to be longer than
};

/// The sums of docs/supervision.md, for a network manager and a service manager that never answer.
Times times_of(Config const& config);

}  // namespace statectl::check_config

#endif
