#ifndef ARA_PHM_SUPERVISION_ENTITY_H
#define ARA_PHM_SUPERVISION_ENTITY_H

#include "ara/phm/phm_client.h"

#include <cstdint>
#include <string>

namespace ara::phm {

/// The part of a process that health management watches.
class SupervisionEntityInterface {
 public:
    SupervisionEntityInterface() = default;
    virtual ~SupervisionEntityInterface() = default;
    SupervisionEntityInterface(SupervisionEntityInterface const&) = delete;
    SupervisionEntityInterface& operator=(SupervisionEntityInterface const&) = delete;

    /// Reports that the process passed a checkpoint. Throws `std::runtime_error` when the report can't be delivered.
    virtual void ReportCheckpoint(std::uint32_t checkpoint, std::uint32_t instance) = 0;
};

/// Supervision by the service manager's watchdog: every checkpoint is one WATCHDOG=1 to the socket that the environment
/// names in NOTIFY_SOCKET. A process that is not supervised (no such variable) reports to nobody and succeeds.
class SupervisionEntity : public SupervisionEntityInterface {
 public:
    explicit SupervisionEntity(Phm_client_interface const& client);

    void ReportCheckpoint(std::uint32_t checkpoint, std::uint32_t instance) override;

 private:
    std::string instance_id_;
};

}  // namespace ara::phm

#endif
