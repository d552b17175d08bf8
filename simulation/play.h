#ifndef SIMULATION_PLAY_H
#define SIMULATION_PLAY_H

#include "simulation/script.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace simulation {

/// How an expectation came out.
struct Verdict {
    Script::Expectation expectation;
    bool is_kept;
    std::string found;  ///< in words: when it was seen, or what was seen instead
};

/// What a script came to.
struct Outcome {
    Timeline timeline;
    std::vector<Verdict> verdicts;
    Time longest_cycle{0};

    bool is_kept() const;
};

/// What a script wants of a life, and what is to happen in it; the script outlives the life.
Life_options options_of(Script const& script, std::string const& configuration);
void enact(Script const& script, Life& life);

/// A life of more than two million cycles.
class Too_many_cycles : public std::runtime_error {
 public:
    using std::runtime_error::runtime_error;
};

/// Plays a script. Throws `std::runtime_error` for a configuration that the daemon refuses, and `Too_many_cycles`.
Outcome play(Script const& script, std::string const& configuration, bool with_log = false);

}  // namespace simulation

#endif
