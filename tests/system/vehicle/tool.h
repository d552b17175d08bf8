#ifndef TESTS_SYSTEM_VEHICLE_TOOL_H
#define TESTS_SYSTEM_VEHICLE_TOOL_H

#include "bench/process/child_process.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include <unistd.h>

namespace bench::vehicle {

/// How a program that was run to its end came out.
struct Outcome {
    std::optional<int> status;  ///< nothing when it had to be ended
    std::string output;
};

/// Runs a program with some assignments on top of the environment and waits for its end.
inline Outcome run(std::vector<std::string> const& words, std::vector<std::string> const& environment = {}) {
    Child_process program(words, environment);
    program.close_input();
    Outcome outcome;
    char buffer[4096];
    for (ssize_t count = 0; (count = ::read(program.output(), buffer, sizeof buffer)) > 0;) {
        outcome.output.append(buffer, static_cast<std::size_t>(count));
    }
    outcome.status = program.wait(std::chrono::seconds(10));
    return outcome;
}

/// Runs ap_statectl of this build.
inline Outcome statectl(std::vector<std::string> words, std::vector<std::string> const& environment = {}) {
    words.insert(words.begin(), VEHICLE_BUILD "/tools/ap_statectl");
    return run(words, environment);
}

}  // namespace bench::vehicle

#endif
