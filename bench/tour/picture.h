#ifndef BENCH_TOUR_PICTURE_H
#define BENCH_TOUR_PICTURE_H

#include "bench/vehicle/timeline.h"

#include <string>

namespace bench::tour {

/// The timeline of a run as an SVG picture, a band for each life of the daemon: the states as coloured bars, and below
/// them on the same time axis the keys, the machine states, the commands to the power-off service, what applications
/// ask for, who needs the network, the watchdog's beats, and for each client how long it owed an answer: green when it
/// gave it, orange when it failed, red when it gave none.
std::string draw(vehicle::Timeline const& events);

}  // namespace bench::tour

#endif
