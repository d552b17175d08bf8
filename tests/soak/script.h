#ifndef TESTS_SOAK_SCRIPT_H
#define TESTS_SOAK_SCRIPT_H

#include <cstdint>
#include <string>
#include <vector>

namespace soak {

enum class Verb {
    key,
    behave,
    late,
    report,
    ecu,
    com,
    wake_up,
    drop,
    kill,
    stop,
    freeze,
    withdraw,
    need,
    rest,
    silence,
    busy,
    restart,
    late_start,
    settle
};

/// What happens to the machine: after a pause, a line of the table of steps with its words filled in.
struct Step {
    unsigned after_ms{0};
    Verb verb{};
    std::vector<std::string> words{};  ///< the line's own and those that were drawn

    bool operator==(Step const& other) const {
        return after_ms == other.after_ms && verb == other.verb && words == other.words;
    }
};

/// A member of the configuration, with its value as JSON.
struct Setting {
    std::string name;
    std::string value;

    bool operator==(Setting const& other) const { return name == other.name && value == other.value; }
};

/// The life of a machine, as it is drawn from a seed before anything has happened, and as it is written down:
///
///     # seed 12
///     set DMSuspendRequestTimeout 1
///      130  key p
///        0  stop daemon 700
///
/// Each step begins with its pause in milliseconds. A line that begins with # says nothing.
struct Script {
    std::vector<Setting> settings{};
    std::vector<Step> steps{};
};

Script drawn(std::uint64_t seed);

/// Its last word.
unsigned number_at_end(Step const& step);

std::string joined(std::vector<std::string> const& words);
std::string text_of(Step const& step);
std::string text_of(Script const& script);

/// Throws `std::invalid_argument` with the number of the line that can't be read.
Script parsed(std::string const& text);

}  // namespace soak

#endif
