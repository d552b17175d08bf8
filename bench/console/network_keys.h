#ifndef BENCH_CONSOLE_NETWORK_KEYS_H
#define BENCH_CONSOLE_NETWORK_KEYS_H

#include "bench/console/machine_view.h"
#include "bench/console/network_panel.h"
#include "bench/vehicle/machine.h"

namespace bench::console {

/// Acts on a key for the network or the applications: a chooses an application; e, m and k let it request or release;
/// b lets the others need the network or no longer, v silences them; d shows this instead of the clients and back.
/// False for any other key. Throws what the machine throws.
bool handle_network_key(int key, vehicle::Machine& machine, Machine_view const& view, Network_hand& hand);

}  // namespace bench::console

#endif
