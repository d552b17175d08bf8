#ifndef TESTS_SOAK_DRAWS_H
#define TESTS_SOAK_DRAWS_H

#include <cstdint>
#include <vector>

namespace soak {

/// Draws that are the same on every machine: SplitMix64, and no distribution of the standard library.
class Draws {
 public:
    explicit Draws(std::uint64_t seed) : state_(seed) {}

    /// One of 0 to `count` - 1.
    unsigned below(unsigned count) { return static_cast<unsigned>((next() >> 32U) * count >> 32U); }
    unsigned between(unsigned least, unsigned most) { return least + below(most - least + 1); }
    bool in_100(unsigned chances) { return below(100) < chances; }

    template <class Value>
    Value const& one_of(std::vector<Value> const& values) {
        return values[below(static_cast<unsigned>(values.size()))];
    }

 private:
    std::uint64_t next() {
        auto mixed = state_ += 0x9e3779b97f4a7c15U;
        mixed = (mixed ^ mixed >> 30U) * 0xbf58476d1ce4e5b9U;
        mixed = (mixed ^ mixed >> 27U) * 0x94d049bb133111ebU;
        return mixed ^ mixed >> 31U;
    }

    std::uint64_t state_;
};

}  // namespace soak

#endif
