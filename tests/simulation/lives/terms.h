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
    /// Of the user data: its length, the areas of AC and CAB bits in bytes, and the bit of the car wake-up from the
    /// first byte's lowest on.
    struct Layout {
        unsigned length{6};
        unsigned wake_up_bit{6};
        unsigned ac_offset{1};
        unsigned ac_length{2};
        unsigned cab_offset{3};
        unsigned cab_length{3};
    } layout{};
    unsigned knockout{3};
    simulation::Time period{0};
    simulation::Time application{0};  ///< that a group of clients has
    simulation::Time diagnosis{0};
    simulation::Time power_off{0};  ///< that a fast shutdown grants the power-off service
    simulation::Bits default_pattern{};
};

}  // namespace lives

#endif
