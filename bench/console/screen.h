#ifndef BENCH_CONSOLE_SCREEN_H
#define BENCH_CONSOLE_SCREEN_H

#include "bench/console/canvas.h"
#include "bench/console/machine_view.h"
#include "bench/console/network_panel.h"

namespace bench::console {

inline constexpr std::size_t k_least_rows = 20;
inline constexpr std::size_t k_least_columns = 80;

/// Draws the machine: the state diagram with the current state lit, beside it what the machine told its neighbours,
/// below it its clients, the network and the applications where it has them, the log up to `level` (1 fatal to 6
/// verbose), and the keys in the last row.
void draw(Canvas& canvas, Machine_view const& machine, int level, Network_hand const& hand = {});

}  // namespace bench::console

#endif
