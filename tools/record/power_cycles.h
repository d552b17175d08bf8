#ifndef TOOLS_RECORD_POWER_CYCLES_H
#define TOOLS_RECORD_POWER_CYCLES_H

#include "tools/record/endings.h"
#include "tools/record/records.h"
#include "tools/trace/life.h"

#include <string>
#include <vector>

namespace statectl::record {

/// From a start or a resume to the end of the suspend or of the life. What it was like is told as `explain` tells a
/// life: `told.begin` and what follows are seconds of the machine's monotonic clock, `told.stored_us` is its beginning
/// by the clock as it was right later, and a hold without an end was not given up.
struct Power_cycle {
    trace::Life told;
    std::string ending;  ///< one of `ending`
    std::string state;   ///< the last one
    Number life;         ///< its number since the boot
    std::string boot;
    double silent{0};        ///< seconds between the daemon's last sign of life and its being found gone
    Number missed{0};        ///< events of its life that are not recorded
    bool is_recorded{true};  ///< to its end; else the recorder was stopped before
};

/// The power cycles, in the order in which they were.
std::vector<Power_cycle> power_cycles(Records const& records, Present const& present);

}  // namespace statectl::record

#endif
