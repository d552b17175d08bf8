#ifndef BENCH_TOUR_TOUR_H
#define BENCH_TOUR_TOUR_H

#include "bench/vehicle/machine.h"

#include <chrono>
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

namespace bench::tour {

/// So that a person can follow.
inline constexpr std::chrono::milliseconds k_spectators_pause{700};

/// What a step must make happen, or must not.
struct Expectation {
    vehicle::Kind kind;
    std::string text;
    bool is_absence{false};             ///< no event of the kind, whatever its text, from the step's begin to its end
    std::optional<vehicle::Act> act{};  ///< of a client or an application, instead of a text; an answer's status is 0
};

/// One step of the tour: something is done, and each expectation must be seen after it.
struct Step {
    std::string name;
    std::function<void(vehicle::Machine&)> action;
    std::vector<Expectation> expectations;
    std::vector<std::string> rows{};  ///< of the states' tables (bench/rules/rules.h) that the expectations show
    bool begins_life{false};          ///< of the daemon: what was before does not count
};

/// How one expectation came out.
struct Finding {
    std::string step;
    std::string expected;
    bool seen;
    std::int64_t time;  ///< nanoseconds of CLOCK_MONOTONIC; 0 when not seen
};

/// The way through every row of the tables of all eight states, in as many lives of the daemon as that takes. It needs
/// a machine with a network, applications 1 and 2, the client diag::dcm, and `configuration_changes`.
std::vector<Step> steps();

/// What differs from the example configuration on the tour's machine, as a merge patch.
nlohmann::json configuration_changes();

/// Goes the way and prints a line for each step as it happens. An expectation has `patience` to be seen. What a step's
/// action throws is a finding. After each step it pauses.
std::vector<Finding> walk(vehicle::Machine& machine, std::vector<Step> const& steps,
                          std::chrono::milliseconds patience = vehicle::Machine::k_patience,
                          std::chrono::milliseconds pause = k_spectators_pause);

/// Prints the table of what was expected and seen; true when everything was seen.
bool print_summary(std::vector<Finding> const& findings);

/// Prints the rows of the states' tables and the step that reached each; a step in which something was not seen reaches
/// none. True when every row was reached.
bool print_rows(std::vector<Step> const& steps, std::vector<Finding> const& findings);

}  // namespace bench::tour

#endif
