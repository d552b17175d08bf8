#include "simulation/timeline.h"

#include <array>

namespace simulation {

char const* name(Kind kind) {
    constexpr std::array<char const*, 14> k_names{"state",         "word",      "restart", "key", "client",
                                                  "machine state", "request",   "network", "bus", "application",
                                                  "power-off",     "neighbour", "log",     "end"};
    return k_names.at(static_cast<std::size_t>(kind));
}

}  // namespace simulation
