#include "ara/com/dds/entities/guid.h"

#include "ara/com/dds/entities/entity.h"
#include "base/hex.h"

#include <algorithm>
#include <iterator>

namespace ara::com::dds {

Guid guid_of(dds_guid_t const& guid) {
    Guid result;
    static_assert(sizeof guid.v == sizeof result);
    std::copy(std::begin(guid.v), std::end(guid.v), result.begin());
    return result;
}

Guid guid_of(dds_entity_t entity) {
    dds_guid_t guid;
    if (auto const code = dds_get_guid(entity, &guid); code < 0) {
        throw_engine_error("The engine has no name for an entity", code);
    }
    return guid_of(guid);
}

std::string to_text(Guid const& guid) {
    return base::to_hex(guid, "");
}

}  // namespace ara::com::dds
