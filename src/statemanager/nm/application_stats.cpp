#include "statemanager/nm/application_stats.h"

namespace ximo::ap::statemanager::nm {

void Application_stats::set_app_bits(Bit_vector const& bits) {
    application_bits_ |= bits;
}

void Application_stats::release_app_bits(Bit_vector const& bits) {
    application_bits_ &= ~bits;
}

void Application_stats::set_ac_bit(std::uint8_t const& n) {
    unsigned const number = n;
    release_ac_bits();
    if (number >= 1 && number <= k_ac_bytes * 8) {
        auto const bit = number - 1;
        ac_bits_[bit / 8] = static_cast<std::uint8_t>(1U << (bit % 8));
    }
}

void Application_stats::release_ac_bits() {
    ac_bits_.assign(k_ac_bytes, 0);
}

bool Application_stats::is_app_active() const {
    return cwu_active_ || has_bits(application_bits_);
}

}  // namespace ximo::ap::statemanager::nm
