#ifndef STATEMANAGER_NM_APPLICATION_STATS_H
#define STATEMANAGER_NM_APPLICATION_STATS_H

#include "statemanager/nm/bit_vector.h"

#include <cstdint>

namespace ximo::ap::statemanager::nm {

/// What one application holds: any number of COM-alive (CAB) bits, at most one AC bit, and the car wake-up (CWU).
class Application_stats {
 public:
    /// Adds CAB bits. Bytes beyond the seventh are ignored.
    void set_app_bits(Bit_vector const& bits);

    /// Takes CAB bits away; those that are not held stay so.
    void release_app_bits(Bit_vector const& bits);

    /// Holds AC bit number n, 1 to 16, instead of the one held before; any other number only gives that one back.
    void set_ac_bit(std::uint8_t const& n);
    void release_ac_bits();

    void set_cwu_flag(bool active) { cwu_active_ = active; }
    bool is_cwu_active() const { return cwu_active_; }

    Bit_vector const& get_application_bits() const { return application_bits_; }
    Bit_vector const& get_ac_bits() const { return ac_bits_; }

    /// Whether it holds the CWU or a CAB bit. The AC bit says who holds something, and does not count by itself.
    bool is_app_active() const;

 private:
    static constexpr unsigned k_application_bytes = 7;
    static constexpr unsigned k_ac_bytes = 2;

    bool cwu_active_{false};
    Bit_vector application_bits_{Bit_vector(k_application_bytes, 0)};
    Bit_vector ac_bits_{Bit_vector(k_ac_bytes, 0)};
};

}  // namespace ximo::ap::statemanager::nm

#endif
