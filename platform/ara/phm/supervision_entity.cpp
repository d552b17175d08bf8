#include "ara/phm/supervision_entity.h"

#include <algorithm>

namespace ara::phm {

SupervisionEntity::SupervisionEntity(Phm_client_interface const& client) : instance_id_(client.instance_id()) {}

void SupervisionEntity::ReportCheckpoint(std::uint32_t /*checkpoint*/, std::uint32_t /*instance*/) {
    auto const now = std::chrono::steady_clock::now();
    if (last_beat_ && now - *last_beat_ < k_shortest_interval) {
        return;
    }
    auto const error = beats_.send();
    if (!error) {
        last_beat_ = now;
        last_refusal_.reset();
        refused_for_ = {};
    } else if (!ara::core::may_pass(error) || is_refused_for_too_long(now)) {
        throw ara::core::not_notified(error);
    }
}

// The time between two tries counts for a second at most: this process, and the service manager with it, may have stood
// still.
bool SupervisionEntity::is_refused_for_too_long(std::chrono::steady_clock::time_point now) {
    if (last_refusal_) {
        refused_for_ += std::min<std::chrono::steady_clock::duration>(now - *last_refusal_, k_longest_step);
    }
    last_refusal_ = now;
    auto const limit = ara::core::watchdog_time();
    return limit && refused_for_ >= *limit / 2;
}

}  // namespace ara::phm
