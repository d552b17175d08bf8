#ifndef BENCH_CONSOLE_NETWORK_PANEL_H
#define BENCH_CONSOLE_NETWORK_PANEL_H

#include "bench/console/canvas.h"
#include "bench/console/machine_view.h"
#include "services/user_data_names.h"

#include <cstddef>
#include <string>
#include <vector>

namespace bench::console {

/// What the user has done to the network and the applications.
struct Network_hand {
    std::vector<std::string> applications;  ///< names; empty for a machine without a network
    std::size_t chosen{0};                  ///< the application that the keys act on
    bool others_need_network{false};
    bool others_silent{false};
    bool instead_of_clients{false};  ///< where the terminal is too small for both
    services::User_data_layout layout;
};

inline constexpr std::size_t k_network_rows = 6;
inline constexpr char const* k_network_keys =
    "Network  a next application  e ECU  m COM  k car wake-up  b others need it  v others silent";

/// Draws the network state, the user data with its bits named, the ECU state and what each application holds, from a
/// row on; `k_network_rows` of them.
void draw_network(Canvas& canvas, std::size_t row, Machine_view const& machine, Network_hand const& hand);

}  // namespace bench::console

#endif
