#ifndef STATEMANAGER_PHM_SUPERVISION_MANAGER_H
#define STATEMANAGER_PHM_SUPERVISION_MANAGER_H

#include "ara/phm/supervision_entity.h"
#include "statemanager/supervision_manager_interface.h"

#include <memory>

namespace ximo::ap::statemanager::phm {

/// Reports the alive checkpoint until the first failure, and then never again: a broken connection to health management
/// must not flood the log.
class Supervision_manager : public Supervision_manager_interface {
 public:
    explicit Supervision_manager(std::unique_ptr<ara::phm::SupervisionEntityInterface> entity);

    void report_alive_status() override;

 private:
    std::unique_ptr<ara::phm::SupervisionEntityInterface> entity_;
    bool reporting_enabled_{true};
};

}  // namespace ximo::ap::statemanager::phm

#endif
