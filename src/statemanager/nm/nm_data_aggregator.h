#ifndef STATEMANAGER_NM_NM_DATA_AGGREGATOR_H
#define STATEMANAGER_NM_NM_DATA_AGGREGATOR_H

#include "statemanager/config/nm_user_data_config.h"
#include "statemanager/nm/application_stats.h"
#include "statemanager/nm/bit_vector.h"

#include <cstdint>
#include <string>
#include <unordered_map>

namespace ximo::ap::statemanager::nm {

/// What all applications hold together, and the NM user data that tells the network of it.
///
/// An application is known by its key, the instance string through which it speaks, from the first time that the key is
/// used. The user data has a fixed first byte with the CWU bit in it, an AC area and a CAB area; where each lies is the
/// layout's business. With the default layout and one application that holds CAB bit 0, AC bit 9 and the CWU:
///
///     c0 00 01 01 00 00
///      |  `--+-' `--+--'
///    80|40   AC    CAB
///
/// `init()` once; then each operation leaves the user data up to date. Every change combines the bits of all
/// applications anew. Not for two threads at once.
class Nm_data_aggregator {
 public:
    explicit Nm_data_aggregator(config::Nm_user_data_config const& layout) : layout_(layout) {}

    /// Sets up user data of the layout's length, and combined vectors of `size` bytes: bytes that applications hold
    /// beyond these reach neither the network nor the user data.
    void init(std::uint32_t size);

    Bit_vector aggregate_application_bits() const;
    Bit_vector aggregate_ac_bits() const;

    /// Copies the first `count` bytes of `bits` over the user data from byte `offset` on. When `bits` has fewer, or the
    /// area is not inside the user data, nothing is changed and an error is logged.
    void apply_user_data_bits(Bit_vector const& bits, std::uint32_t offset, std::uint32_t count);

    void request_cab_bits(std::string const& key, Bit_vector const& bits);
    void release_cab_bits(std::string const& key, Bit_vector const& bits);
    void set_ac_bit(std::string const& key, std::uint8_t n);
    void release_ac_bit(std::string const& key);
    void request_cwu(std::string const& key);
    void release_cwu(std::string const& key);

    /// Whether an application holds a CAB bit or the CWU.
    bool is_com_alive() const;

    /// The CAB bits of all applications as of the last change of one of them.
    Bit_vector const& get_application_bits() const { return application_bits_; }
    Bit_vector const& get_user_data() const { return user_data_; }

 private:
    void apply_application_bits();
    void apply_ac_bits();
    bool is_cwu_active() const;
    void release_ac_bit_of_inactive(std::string const& key);
    bool change_cwu_bit(bool set);

    std::unordered_map<std::string, Application_stats> applications_;
    Bit_vector application_bits_;
    Bit_vector user_data_;
    config::Nm_user_data_config const layout_;
    std::uint32_t size_{0};
};

}  // namespace ximo::ap::statemanager::nm

#endif
