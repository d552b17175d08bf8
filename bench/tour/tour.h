#ifndef BENCH_TOUR_TOUR_H
#define BENCH_TOUR_TOUR_H

#include "bench/vehicle/machine.h"

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace bench::tour {

/// What a step must make happen.
struct Expectation {
    vehicle::Kind kind;
    std::string text;
};

/// One step of the tour: something is done, and each expectation must be seen after it.
struct Step {
    std::string name;
    std::function<void(vehicle::Machine&)> action;
    std::vector<Expectation> expectations;
};

/// How one expectation came out.
struct Finding {
    std::string step;
    std::string expected;
    bool seen;
    std::int64_t time;  ///< nanoseconds of CLOCK_MONOTONIC; 0 when not seen
};

/// The way through every transition that needs no network, in three lives of the daemon, with clients that answer,
/// do not, and fail.
std::vector<Step> steps();

/// Goes the way and prints a line for each step as it happens. An expectation has `patience` to be seen.
std::vector<Finding> walk(vehicle::Machine& machine, std::vector<Step> const& steps,
                          std::chrono::milliseconds patience = vehicle::Machine::k_patience);

/// Prints the table of what was expected and seen; true when everything was seen.
bool print_summary(std::vector<Finding> const& findings);

}  // namespace bench::tour

#endif
