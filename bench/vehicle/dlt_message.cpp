#include "bench/vehicle/dlt_message.h"

#include "bench/json_lines/clock.h"

namespace bench::vehicle {

std::optional<Event> to_event(dlt::Message const& message) {
    constexpr std::int64_t k_ns_per_tick = 100'000;
    if (message.level == 0) {
        return std::nullopt;
    }
    Event event{message.ticks ? *message.ticks * k_ns_per_tick : monotonic_ns(), Kind::log, dlt::text_of(message)};
    event.level = message.level;
    event.context = message.context;
    event.application = message.application;
    return event;
}

}  // namespace bench::vehicle
