#ifndef BENCH_TOUR_CLIENT_BARS_H
#define BENCH_TOUR_CLIENT_BARS_H

#include "bench/vehicle/timeline.h"

#include <cstdint>
#include <string>
#include <vector>

namespace bench::tour {

/// How long a client has owed one answer, and what came of it.
struct Client_bar {
    enum class Outcome { done, failed, missing };

    std::string client;
    std::string state;  ///< that it was asked for
    std::int64_t begin;
    std::int64_t end;
    Outcome outcome;
};

/// The bars of all clients in the order in which they begin. An answer that came when its time was over is missing.
std::vector<Client_bar> client_bars(vehicle::Timeline const& events);

/// The clients in the order in which they appear.
std::vector<std::string> clients_in(vehicle::Timeline const& events);

}  // namespace bench::tour

#endif
