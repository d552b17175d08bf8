#ifndef BENCHMARKS_MACHINE_FIGURES_H
#define BENCHMARKS_MACHINE_FIGURES_H

#include <cstdint>
#include <string>
#include <vector>

// What every benchmark does with what it has measured: it prints the samples of both sides, and then tells a row for
// each figure that counts. `./test --benchmarks` joins the rows of all programs to one table.

namespace benchmarks {

/// The samples of one thing that was measured, in nanoseconds.
class Samples {
 public:
    void add(std::int64_t nanoseconds) { values_.push_back(nanoseconds); }

    /// The value below which the given share (0 to 1) of the samples lies; 0 without samples.
    double quantile_us(double share) const;
    double median_us() const { return quantile_us(0.5); }
    double p99_us() const { return quantile_us(0.99); }
    std::size_t count() const { return values_.size(); }

 private:
    std::vector<std::int64_t> values_;
};

/// Prints "NAME: median 1.0 us, p90 2.0 us, p99 3.0 us (N samples)".
void print(std::string const& name, Samples const& samples);

/// The most that is wanted: of the ratio to the yardstick, of what ours is more than the yardstick, or of ours itself.
struct Target {
    enum class Of { nothing, ratio, difference, figure };

    Of of{Of::nothing};
    double most{0.0};
};

constexpr Target at_most_times(double most) {
    return {Target::Of::ratio, most};
}
constexpr Target at_most_more(double most) {
    return {Target::Of::difference, most};
}
constexpr Target at_most(double most) {
    return {Target::Of::figure, most};
}

/// A figure beside its yardstick, from the same run. The less, the better: a time of a call, not calls in a time.
struct Row {
    std::string what;  ///< no other row of any program is called so; docs/performance.md knows it by this name
    double ours{0.0};
    double yardstick{0.0};  ///< 0: there is none
    std::string unit;
    Target target{};
};

/// Prints "| WHAT | OURS | YARDSTICK | RATIO | TARGET | VERDICT |". A target that is missed is told, and is no failure
/// of the program.
void tell(Row const& row);

/// How much of something is measured: less in the short form, which BENCHMARKS_SHORT in the environment asks for.
int whole_or_short(int whole, int brief);

}  // namespace benchmarks

#endif
