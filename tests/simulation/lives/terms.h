#ifndef TESTS_SIMULATION_LIVES_TERMS_H
#define TESTS_SIMULATION_LIVES_TERMS_H

#include "simulation/network.h"
#include "simulation/time.h"

namespace lives {

/// What the rules need to know of a life's configuration.
struct Terms {
    bool nm_usage{true};
    bool requests_on_entry{true};
    bool manager_is_there{true};
    bool channel_is_there{true};
    bool sends_cab_area{false};
    unsigned knockout{3};
    simulation::Time period{0};
    simulation::Time application{0};  ///< that a group of clients has
    simulation::Time diagnosis{0};
    simulation::Time power_off{0};  ///< that a fast shutdown grants the power-off service
    simulation::Bits default_pattern{};
};

}  // namespace lives

#endif
