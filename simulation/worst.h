#ifndef SIMULATION_WORST_H
#define SIMULATION_WORST_H

#include "simulation/script.h"

#include <optional>
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
/// the longest resume, and right after it. A script without clients gets a silent one of each group. Of the script's
/// events those are played that change the manner of a client or of another neighbour.
class Longest_way {
 public:
    Longest_way(Script const& script, std::string const& configuration, Goal const& goal);

    /// With the clients as the script has them; nothing where it has none.
    std::optional<Worst> const& as_they_are() const { return as_they_are_; }
    /// With each group of clients silent as well.
    Worst const& whatever_they_do() const { return whatever_they_do_; }

    std::string text() const;

 private:
    std::string assumed() const;

    Script const& script_;
    Goal const& goal_;
    Time budget_{0};  ///< of the power-off service in a fast shutdown
    std::optional<Worst> as_they_are_;
    Worst whatever_they_do_;
};

}  // namespace simulation

#endif
