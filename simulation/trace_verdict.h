#ifndef SIMULATION_TRACE_VERDICT_H
#define SIMULATION_TRACE_VERDICT_H

#include <cstddef>
#include <string>

namespace simulation {

/// What came of holding a life of the real daemon against the simulated one.
struct Trace_verdict {
    enum class Kind {
        agrees,      ///< as far as the trace goes
        disagrees,   ///< at its first step that no order of what was concurrent leads to
        undecidable  ///< from a place on: its neighbours did what a trace doesn't tell, or it tells too little
    };

    Kind kind;
    std::size_t steps;  ///< that agree, from the start on
    std::string text;   ///< where and why not
};

/// "agrees, 312 steps", or where and why not.
std::string text_of(Trace_verdict const& verdict);

}  // namespace simulation

#endif
