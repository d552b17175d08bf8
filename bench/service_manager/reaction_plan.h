#ifndef BENCH_SERVICE_MANAGER_REACTION_PLAN_H
#define BENCH_SERVICE_MANAGER_REACTION_PLAN_H

#include "bench/json_lines/plan.h"

#include <chrono>
#include <string>

namespace bench::service_manager {

/// How one call of a client goes; a default one goes well.
struct Reaction {
    std::string error;                       ///< D-Bus error name to answer with; empty for none
    bool silent{false};                      ///< never answers
    std::chrono::milliseconds delay{0};      ///< holds the whole call back
    std::chrono::milliseconds job_delay{0};  ///< of a started job: time until it ends
    std::string job_result{"done"};          ///< of a started job: "done", "failed", "timeout", "canceled", ...
};

/// By the method, a D-Bus member such as "StartUnit", and the unit's name.
using Reaction_plan = Plan<Reaction, std::string, std::string>;

}  // namespace bench::service_manager

#endif
