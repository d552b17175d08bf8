#ifndef TESTS_SOAK_REST_H
#define TESTS_SOAK_REST_H

#include "bench/rules/rules.h"
#include "bench/vehicle/vehicle.h"
#include "holds.h"
#include "invariants.h"
#include "losses.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace soak {

constexpr std::uint8_t k_default_bit = 0x01;  ///< of the first byte: what the daemon asks for by itself

/// What the daemon has of the kernel's.
struct Used {
    long descriptors{0};
    long threads{0};
    long memory_kb{0};
};

/// What there is more of than at first, if it is too much; else empty.
std::string growth(Used const& first, Used const& now);

/// What the network is asked for, and the user data, when nothing goes on any more.
struct Told_network {
    std::vector<std::uint8_t> requests;
    std::vector<std::uint8_t> user_data;
};

/// What is wrong with that; empty when nothing is.
std::string fault_of(Told_network const& told, bench::rules::State now, Circumstances const& circumstances,
                     Holds const& holds, Losses const& losses, bool with_cab_bits);

/// What one daemon and its neighbours must have come to when nothing goes on any more.
class Rest {
 public:
    Rest(bench::vehicle::Vehicle& machine, Circumstances const& circumstances, Holds const& holds, Losses const& losses,
         bool with_cab_bits)
        : machine_(machine),
          circumstances_(circumstances),
          holds_(holds),
          losses_(losses),
          with_cab_bits_(with_cab_bits) {}

    /// Another daemon.
    void begin() { first_use_.reset(); }

    /// Empty when nothing is.
    std::string missing(bench::rules::State now, bool has_suspended);

 private:
    std::string missing_of_network(bench::rules::State now) const;
    std::string missing_of_resources();
    Used used() const;

    bench::vehicle::Vehicle& machine_;
    Circumstances const& circumstances_;
    Holds const& holds_;
    Losses const& losses_;
    bool const with_cab_bits_;
    std::optional<Used> first_use_;
};

}  // namespace soak

#endif
