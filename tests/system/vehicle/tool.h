#ifndef TESTS_SYSTEM_VEHICLE_TOOL_H
#define TESTS_SYSTEM_VEHICLE_TOOL_H

#include "bench/process/child_process.h"

#include <chrono>
#include <csignal>
#include <optional>
#include <string>
#include <vector>

#include <poll.h>
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

/// A program that goes on while the machine does, and what it prints.
class Companion {
 public:
    explicit Companion(std::vector<std::string> const& words) : program(words, {}) {}

    /// Whether the words stand in what it has printed, as soon as they do.
    bool says(std::string const& words, std::chrono::milliseconds limit) {
        pollfd news{program.output(), POLLIN, 0};
        char buffer[4096];
        while (said.find(words) == std::string::npos && ::poll(&news, 1, static_cast<int>(limit.count())) == 1) {
            auto const count = ::read(program.output(), buffer, sizeof buffer);
            if (count <= 0) {
                return false;
            }
            said.append(buffer, static_cast<std::size_t>(count));
        }
        return said.find(words) != std::string::npos;
    }

    /// Its status when it is asked to end.
    std::optional<int> end() {
        program.signal(SIGTERM);
        return program.wait(std::chrono::seconds(20));
    }

    Child_process program;
    std::string said;
};

}  // namespace bench::vehicle

#endif
