#include "bench/json_lines/clock.h"

#include <ctime>

namespace bench {

std::int64_t monotonic_ns() {
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return std::int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec;
}

}  // namespace bench
