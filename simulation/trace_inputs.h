#ifndef SIMULATION_TRACE_INPUTS_H
#define SIMULATION_TRACE_INPUTS_H

#include "simulation/life.h"
#include "simulation/trace_life.h"
#include "simulation/trace_steps.h"

#include <cstddef>
#include <set>
#include <vector>

namespace simulation {

/// What a trace tells came from outside, done to the simulated life: each once.
class Trace_inputs {
 public:
    Trace_inputs(Trace_life const& trace, Life& life, Trace_steps& steps);

    /// `is_in_time` is false for an end that comes before the driver has begun, which is told and lost.
    void apply(std::size_t place, bool is_in_time);
    bool is_applied(std::size_t place) const { return applied_.count(place) != 0; }
    void press(dlt::Message const& message);

    bool has_network() const { return has_network_; }
    /// Told before the network was there: its line counts when it is.
    void hold_back(std::size_t place) { held_.push_back(place); }
    /// What was held back, when the network has come since.
    std::vector<std::size_t> held_back();

    /// What is due now happens.
    void settle();
    /// Since the trace's first message.
    Time time_of(dlt::Message const& message) const;
    bool is_before_the_driver(std::size_t place) const;  ///< told before it began

 private:
    bool apply_network(dlt::Message const& message);
    void offer();
    void answer(std::size_t place);
    void complete(std::size_t place);
    void stop(bool is_in_time);

    Trace_life const& trace_;
    Life& life_;
    Trace_steps& steps_;
    std::set<std::size_t> applied_;
    std::vector<std::size_t> held_;
    bool has_network_{false};
};

}  // namespace simulation

#endif
