#ifndef TARQ_UDPNM_INTERFACE_USER_DATA_INTERFACE_TYPES_H
#define TARQ_UDPNM_INTERFACE_USER_DATA_INTERFACE_TYPES_H

#include <cstdint>
#include <vector>

namespace tarq::udpnm::interface {

/// What `GetUserData` answers with.
struct GetUserData {
    struct Output {
        std::vector<std::uint8_t> data;
    };
};

}  // namespace tarq::udpnm::interface

#endif
