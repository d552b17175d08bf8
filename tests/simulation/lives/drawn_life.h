#ifndef TESTS_SIMULATION_LIVES_DRAWN_LIFE_H
#define TESTS_SIMULATION_LIVES_DRAWN_LIFE_H

#include <cstdint>
#include <string>
#include <vector>

namespace lives {

/// The lines of a script, as ap_whatif reads it.
using Lines = std::vector<std::string>;

/// A life out of a seed: configuration, clients and their manners, and what happens, in the order of time.
Lines drawn_life(std::uint64_t seed);

std::string text_of(Lines const& lines);

}  // namespace lives

#endif
