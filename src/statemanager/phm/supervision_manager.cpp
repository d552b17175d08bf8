#include "statemanager/phm/supervision_manager.h"

#include "ara/log/logging.h"
#include "status/driver_status.h"

#include <stdexcept>
#include <utility>

namespace ximo::ap::statemanager::phm {

Supervision_manager::Supervision_manager(std::unique_ptr<ara::phm::SupervisionEntityInterface> entity)
    : entity_(std::move(entity)) {}

void Supervision_manager::report_alive_status() {
    if (!reporting_enabled_ || !entity_) {
        return;
    }
    try {
        entity_->ReportCheckpoint(1, 1);
    } catch (std::runtime_error const& error) {
        ara::log::LogError() << "AliveSupervision: caught " << error.what();
        ara::log::LogError() << "Stopping AliveSupervision reporting to PHM!";
        reporting_enabled_ = false;
        status::supervision_stopped();
    }
}

}  // namespace ximo::ap::statemanager::phm
