#ifndef BENCH_TOUR_LANES_H
#define BENCH_TOUR_LANES_H

#include "bench/tour/axis.h"

#include <ostream>

namespace bench::tour {

/// A lane for each kind of event, a dot for each event. Of how high all of them are, and drawn from `y` on.
double event_lanes_height();
void draw_event_lanes(std::ostream& out, vehicle::Timeline const& events, Axis const& axis, double y);

/// A lane for each client that was asked, with how long it owed each answer.
double client_lanes_height(vehicle::Timeline const& events);
void draw_client_lanes(std::ostream& out, vehicle::Timeline const& events, Axis const& axis, double y);

}  // namespace bench::tour

#endif
