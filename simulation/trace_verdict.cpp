#include "simulation/trace_verdict.h"

namespace simulation {

std::string text_of(Trace_verdict const& verdict) {
    auto const steps = std::to_string(verdict.steps) + " steps";
    switch (verdict.kind) {
        case Trace_verdict::Kind::agrees:
            return "agrees, " + steps;
        case Trace_verdict::Kind::disagrees:
            return "DISAGREES after " + steps + ": " + verdict.text;
        default:
            return "not decidable after " + steps + ": " + verdict.text;
    }
}

}  // namespace simulation
