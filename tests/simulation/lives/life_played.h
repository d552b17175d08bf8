#ifndef TESTS_SIMULATION_LIVES_LIFE_PLAYED_H
#define TESTS_SIMULATION_LIVES_LIFE_PLAYED_H

#include "coverage.h"
#include "drawn_life.h"
#include "simulation/timeline.h"

#include <cstdint>
#include <functional>
#include <string>

namespace lives {

struct Played {
    std::string finding;  ///< the first rule that was broken, or the exception that ended it; "" for none
    std::uint64_t steps;  ///< of the driver
};

/// What the rules are told in place of an entry, as if the machine had done that.
using Planted = std::function<simulation::Timeline(simulation::Entry const& entry)>;

/// Plays a script under the rules.
Played played(Lines const& lines, Coverage& coverage, Planted const& planted = {});

/// Few of the lines, in their order, that still fail; none of them can be left out.
Lines shrunk(Lines lines, std::function<bool(Lines const& lines)> const& fails);

}  // namespace lives

#endif
