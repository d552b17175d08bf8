#include "status/restart_status.h"

#include "status/page_writer.h"

namespace status {

void restart_requested(std::uint64_t type) {
    if (auto* const page = status::page()) {
        auto& counters = page->counters;
        put(counters.restart_type, type);
        put(counters.restart_at, now());
        counters.restarts[type < k_restart_types ? type : 0].fetch_add(1, std::memory_order_release);
        page->events.fetch_add(1, std::memory_order_release);
    }
}

void restart_failed() {
    if (auto* const page = status::page()) {
        page->counters.restarts_failed.fetch_add(1, std::memory_order_release);
    }
}

}  // namespace status
