#ifndef ARA_PHM_SUPERVISION_ENTITY_H
#define ARA_PHM_SUPERVISION_ENTITY_H

#include "ara/phm/phm_client.h"

#include <cstdint>

namespace ara::phm {

class SupervisionEntityInterface {
 public:
    virtual ~SupervisionEntityInterface() = default;
    virtual void ReportCheckpoint(std::uint32_t checkpoint, std::uint32_t instance) = 0;
};

/// Tells "IDENTITY CHECKPOINT".
class SupervisionEntity : public SupervisionEntityInterface {
 public:
    explicit SupervisionEntity(Phm_client const& client);
    void ReportCheckpoint(std::uint32_t checkpoint, std::uint32_t instance) override;

 private:
    std::string instance_id_;
};

}  // namespace ara::phm

#endif
