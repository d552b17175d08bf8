#ifndef SIMULATION_RANDOM_H
#define SIMULATION_RANDOM_H

#include <cstdint>

namespace simulation {

/// The same numbers out of a seed on every machine (SplitMix64).
class Random {
 public:
    explicit Random(std::uint64_t seed) : state_(seed) {}

    std::uint64_t next() {
        state_ += 0x9E3779B97F4A7C15U;
        auto mixed = (state_ ^ (state_ >> 30U)) * 0xBF58476D1CE4E5B9U;
        mixed = (mixed ^ (mixed >> 27U)) * 0x94D049BB133111EBU;
        return mixed ^ (mixed >> 31U);
    }

    /// 0 to `bound` - 1; a bound of some thousands is meant, for which the small numbers are hardly more frequent.
    std::uint64_t below(std::uint64_t bound) { return next() % bound; }

 private:
    std::uint64_t state_;
};

}  // namespace simulation

#endif
