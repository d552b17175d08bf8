#ifndef ARA_COM_DDS_ENTITIES_MATCHED_H
#define ARA_COM_DDS_ENTITIES_MATCHED_H

#include "ara/com/dds/entities/guid.h"

#include <optional>
#include <vector>

#include <dds/dds.h>

namespace ara::com::dds {

/// A reader or writer that another one is connected with.
struct Peer {
    dds_instance_handle_t handle;  ///< as samples tell it
    Guid identity;
    Guid participant;
};

std::vector<Peer> writers_matched_by(dds_entity_t reader);
/// One of them; nothing when it has gone.
std::optional<Peer> writer_matched_by(dds_entity_t reader, dds_instance_handle_t writer);
std::vector<Peer> readers_matched_by(dds_entity_t writer);

}  // namespace ara::com::dds

#endif
