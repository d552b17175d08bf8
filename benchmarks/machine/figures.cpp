#include "benchmarks/machine/figures.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace benchmarks {

namespace {

// Four figures that count, or so.
std::string text(double number) {
    int const decimals = number >= 1000.0 ? 0 : number >= 100.0 ? 1 : number >= 10.0 ? 2 : 3;
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.*f", decimals, number);
    return buffer;
}

std::string text(Target const& target, std::string const& unit) {
    switch (target.of) {
        case Target::Of::ratio:
            return text(target.most);
        case Target::Of::difference:
            return "+" + text(target.most) + " " + unit;
        case Target::Of::figure:
            return text(target.most) + " " + unit;
        case Target::Of::nothing:
            break;
    }
    return "none";
}

char const* verdict(Row const& row) {
    switch (row.target.of) {
        case Target::Of::ratio:
            return row.ours <= row.target.most * row.yardstick ? "kept" : "MISSED";
        case Target::Of::difference:
            return row.ours - row.yardstick <= row.target.most ? "kept" : "MISSED";
        case Target::Of::figure:
            return row.ours <= row.target.most ? "kept" : "MISSED";
        case Target::Of::nothing:
            break;
    }
    return "none";
}

}  // namespace

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
                samples.median_us(), samples.quantile_us(0.9), samples.p99_us(), samples.count());
}

void tell(Row const& row) {
    bool const has_yardstick = row.yardstick > 0.0;
    std::printf("| %s | %s %s | %s | %s | %s | %s |\n", row.what.c_str(), text(row.ours).c_str(), row.unit.c_str(),
                has_yardstick ? (text(row.yardstick) + " " + row.unit).c_str() : "none",
                has_yardstick ? text(row.ours / row.yardstick).c_str() : "none", text(row.target, row.unit).c_str(),
                verdict(row));
    std::fflush(stdout);
}

int whole_or_short(int whole, int brief) {
    return std::getenv("BENCHMARKS_SHORT") == nullptr ? whole : brief;
}

}  // namespace benchmarks
