#include "ara/phm/supervision_entity.h"

#include "told/told.h"

namespace ara::phm {

SupervisionEntity::SupervisionEntity(Phm_client const& client) : instance_id_(client.instance_id()) {
    told::tell({"phm", instance_id_});
}

void SupervisionEntity::ReportCheckpoint(std::uint32_t checkpoint, std::uint32_t /*instance*/) {
    told::tell({"phm", instance_id_ + ' ' + std::to_string(checkpoint)});
}

}  // namespace ara::phm
