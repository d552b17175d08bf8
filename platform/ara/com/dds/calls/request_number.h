#ifndef ARA_COM_DDS_CALLS_REQUEST_NUMBER_H
#define ARA_COM_DDS_CALLS_REQUEST_NUMBER_H

#include "rpc_headers.h"

#include <cstdint>

namespace ara::com::dds {

/// The number of a request as the wire has it: in two halves.
inline dds_SequenceNumber_t to_wire(std::int64_t number) {
    return {static_cast<std::int32_t>(number >> 32), static_cast<std::uint32_t>(number)};
}

inline std::int64_t number_of(dds_SequenceNumber_t const& halves) {
    return std::int64_t{halves.hi} * (std::int64_t{1} << 32) + halves.lo;
}

}  // namespace ara::com::dds

#endif
