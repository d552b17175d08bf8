#ifndef ARA_COM_DDS_ENTITIES_GUID_H
#define ARA_COM_DDS_ENTITIES_GUID_H

#include <array>
#include <cstdint>
#include <string>

#include <dds/dds.h>

namespace ara::com::dds {

/// The name of a participant, a reader or a writer among all of a domain, in network byte order. What stands below a
/// participant shares its first twelve bytes.
using Guid = std::array<std::uint8_t, 16>;

Guid guid_of(dds_guid_t const& guid);

/// Throws `tarq::com::Infrastructure_exception`.
Guid guid_of(dds_entity_t entity);

/// 32 lower-case hexadecimal digits.
std::string to_text(Guid const& guid);

}  // namespace ara::com::dds

#endif
