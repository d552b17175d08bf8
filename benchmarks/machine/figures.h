#ifndef BENCHMARKS_MACHINE_FIGURES_H
#define BENCHMARKS_MACHINE_FIGURES_H

#include <cstdint>
#include <string>
#include <vector>

namespace benchmarks {

/// The samples of one thing that was measured, in nanoseconds.
class Samples {
 public:
    void add(std::int64_t nanoseconds) { values_.push_back(nanoseconds); }

    /// The value below which the given share (0 to 1) of the samples lies; 0 without samples.
    double quantile_us(double share) const;
    double median_us() const { return quantile_us(0.5); }
    std::size_t count() const { return values_.size(); }

 private:
    std::vector<std::int64_t> values_;
};

/// Prints "NAME: median 1.0 us, p90 2.0 us, p99 3.0 us (N samples)".
void print(std::string const& name, Samples const& samples);

/// Prints whether a figure keeps its target; returns it too.
bool judge(std::string const& what, double figure, double target, std::string const& unit);

}  // namespace benchmarks

#endif
