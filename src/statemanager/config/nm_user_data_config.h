#ifndef STATEMANAGER_CONFIG_NM_USER_DATA_CONFIG_H
#define STATEMANAGER_CONFIG_NM_USER_DATA_CONFIG_H

#include <cstdint>

namespace ximo::ap::statemanager::config {

/// Layout of the NM user data. Numbers are bytes of the user data unless the name says bits.
struct Nm_user_data_config {
    std::uint32_t user_data_bytes{6};     ///< total length
    std::uint32_t cwu_bit_position{6};    ///< position of the car-wake-up bit
    std::uint32_t ac_offset{1};           ///< first byte of the application-COM-alive (AC) bits
    std::uint32_t ac_bytes{2};            ///< number of AC bytes
    std::uint32_t cab_offset{3};          ///< first byte of the COM-alive bits that applications request (CAB)
    std::uint32_t cab_bytes{3};           ///< number of CAB bytes
    std::uint32_t max_cab_size_bits{24};  ///< number of usable CAB bits
    bool cab_bits_enabled{false};         ///< whether the CAB bits are part of what is sent
};

}  // namespace ximo::ap::statemanager::config

#endif
