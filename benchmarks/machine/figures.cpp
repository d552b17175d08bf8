#include "benchmarks/machine/figures.h"

#include <algorithm>
#include <cstdio>

namespace benchmarks {

double Samples::quantile_us(double share) const {
    if (values_.empty()) {
        return 0.0;
    }
    auto sorted = values_;
    auto const index = static_cast<std::size_t>(share * static_cast<double>(sorted.size() - 1));
    std::nth_element(sorted.begin(), sorted.begin() + static_cast<std::ptrdiff_t>(index), sorted.end());
    return static_cast<double>(sorted[index]) / 1000.0;
}

void print(std::string const& name, Samples const& samples) {
    std::printf("%-24s median %9.1f us   p90 %9.1f us   p99 %9.1f us   (%zu samples)\n", name.c_str(),
                samples.median_us(), samples.quantile_us(0.9), samples.quantile_us(0.99), samples.count());
}

bool judge(std::string const& what, double figure, double target, std::string const& unit) {
    bool const kept = figure <= target;
    std::printf("%s: %.3f %s, target at most %.3f %s: %s\n", what.c_str(), figure, unit.c_str(), target, unit.c_str(),
                kept ? "kept" : "MISSED");
    return kept;
}

}  // namespace benchmarks
