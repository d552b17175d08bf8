#ifndef TESTS_SIMULATION_LIVES_SITUATIONS_H
#define TESTS_SIMULATION_LIVES_SITUATIONS_H

#include "bench/rules/rules.h"
#include "notifier_model.h"

#include <cstdint>
#include <set>
#include <string>
#include <utility>

namespace lives {

/// A state, and a number for all that a cycle finds in it: command, conditions, phase of the notification.
using Situation = std::pair<bench::rules::State, std::uint64_t>;

std::uint64_t number_of(bench::rules::Situation const& found, exploration::Notifier_model const& notifier);

/// "Post Run: Run, ECU kept, DEM asked kOn".
std::string text_of(Situation const& situation);

/// What the tables of the states lead to, when keys, the network, applications and clients do anything that they can.
struct Possible {
    std::set<Situation> situations;                                                 ///< all that a cycle can find
    std::set<std::pair<bench::rules::Row const*, bench::rules::Row const*>> pairs;  ///< transitions after transitions
};

Possible const& possible();

}  // namespace lives

#endif
