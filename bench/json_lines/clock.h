#ifndef BENCH_JSON_LINES_CLOCK_H
#define BENCH_JSON_LINES_CLOCK_H

#include <cstdint>

namespace bench {

/// Nanoseconds of CLOCK_MONOTONIC: the time stamp "t" of every event, comparable between all processes of the machine.
std::int64_t monotonic_ns();

}  // namespace bench

#endif
