#ifndef SIMULATION_WORST_H
#define SIMULATION_WORST_H

#include "simulation/script.h"

#include <string>
#include <vector>

namespace simulation {

/// From a key to the state that it asks for, or to the end.
struct Goal {
    char const* name;
    char const* key;
    char const* state;  ///< "" for the end of the life
};

/// The longest way to a goal that was found.
struct Worst {
    struct Leg {
        Time length;
        std::string what;
    };

    Time length{-1};
    std::vector<Leg> legs;  ///< what it is made of
    std::string script;     ///< that plays it
    unsigned tried{0};
    unsigned lost{0};         ///< after these the state was never reached, as nobody acted on the key
    std::string lost_script;  ///< that plays the first of them
};

/// "suspend", "resume" and "shutdown".
std::vector<Goal> const& goals();

/// Tries the key at each moment at which something happens in a life with a suspend and a resume, and in the life with
/// the longest resume, and right after it; with the script's clients as they are, and with each group of them silent. A
/// script without clients gets a silent one of each group. Of the script's events none is played.
Worst find_worst(Script const& script, std::string const& configuration, Goal const& goal);

std::string text_of(Worst const& worst, Goal const& goal);

}  // namespace simulation

#endif
