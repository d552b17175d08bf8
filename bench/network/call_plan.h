#ifndef BENCH_NETWORK_CALL_PLAN_H
#define BENCH_NETWORK_CALL_PLAN_H

#include "bench/json_lines/plan.h"

#include <chrono>
#include <string>

namespace bench::network {

/// How one call of a service goes; a default one goes well.
struct Call_reaction {
    bool refuse{false};                  ///< the caller gets an exception, and nothing else happens
    bool silent{false};                  ///< the caller gets no answer; what was asked for happens
    std::chrono::milliseconds delay{0};  ///< until the answer
};

/// By the method, such as "RequestNetwork".
using Call_plan = Plan<Call_reaction, std::string>;

}  // namespace bench::network

#endif
