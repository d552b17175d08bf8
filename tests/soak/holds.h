#ifndef TESTS_SOAK_HOLDS_H
#define TESTS_SOAK_HOLDS_H

#include <array>
#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace soak {

/// What the applications hold, as the daemon is to ask for it in their names.
class Holds {
 public:
    static constexpr std::size_t k_bytes = 6;
    using Bytes = std::array<std::uint8_t, k_bytes>;

    /// A call of an application's that was answered: the command it was given.
    void hear(std::string const& application, nlohmann::json const& command);

    bool keep_ecu_alive() const;
    bool keep_com_alive() const;
    bool have_kept_ecu_alive() const { return kept_ecu_; }

    /// Of the applications' communication bits and the bit of the ECU.
    Bytes requests() const;

    /// The network's user data while the machine takes part.
    Bytes user_data() const;

 private:
    struct Of_one {
        bool ecu{false};
        bool wake_up{false};
        std::uint32_t bits{0};  ///< the first four bytes, the first one lowest
        unsigned number{0};     ///< of the one AC bit, from 1; 0 for none
    };

    bool is_active(Of_one const& one) const { return one.wake_up || one.bits != 0; }

    std::map<std::string, Of_one> all_;
    bool kept_ecu_{false};
};

}  // namespace soak

#endif
