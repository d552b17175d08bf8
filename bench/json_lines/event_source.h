#ifndef BENCH_JSON_LINES_EVENT_SOURCE_H
#define BENCH_JSON_LINES_EVENT_SOURCE_H

#include <memory>
#include <system_error>

#include <systemd/sd-event.h>

namespace bench {

struct Event_source_deleter {
    void operator()(sd_event_source* source) const { sd_event_source_disable_unref(source); }
};

/// What an event loop looks after; it is taken out of the loop with this.
using Event_source = std::unique_ptr<sd_event_source, Event_source_deleter>;

/// Throws `std::system_error` for a result below 0, which is a negative errno.
inline void require(int result, char const* call) {
    if (result < 0) {
        throw std::system_error(-result, std::generic_category(), call);
    }
}

}  // namespace bench

#endif
