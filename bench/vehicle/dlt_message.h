#ifndef BENCH_VEHICLE_DLT_MESSAGE_H
#define BENCH_VEHICLE_DLT_MESSAGE_H

#include "bench/vehicle/timeline.h"
#include "tools/dlt/reader.h"

#include <optional>

namespace bench::vehicle {

/// What a DLT message says, at the time at which its program logged it, on that machine's clock since its start.
/// Nothing for control messages.
std::optional<Event> to_event(dlt::Message const& message);

}  // namespace bench::vehicle

#endif
