#include "ara/phm/supervision_entity.h"

#include "ara/core/service_notification.h"

namespace ara::phm {

SupervisionEntity::SupervisionEntity(Phm_client_interface const& client) : instance_id_(client.instance_id()) {}

void SupervisionEntity::ReportCheckpoint(std::uint32_t /*checkpoint*/, std::uint32_t /*instance*/) {
    auto const now = std::chrono::steady_clock::now();
    if (last_beat_ && now - *last_beat_ < k_shortest_interval) {
        return;
    }
    ara::core::notify_service_manager("WATCHDOG=1");
    last_beat_ = now;
}

}  // namespace ara::phm
