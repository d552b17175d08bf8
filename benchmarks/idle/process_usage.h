#ifndef BENCHMARKS_IDLE_PROCESS_USAGE_H
#define BENCHMARKS_IDLE_PROCESS_USAGE_H

#include <cstdint>

#include <sys/types.h>

namespace benchmarks {

/// Time that all present threads of a process have had a processor, user and system, in nanoseconds.
std::int64_t processor_time_ns(pid_t process);

/// Resident memory of a process in KiB, shared pages included; of that what belongs to no file.
struct Memory {
    std::int64_t resident_kib{0};
    std::int64_t anonymous_kib{0};
};
Memory memory_of(pid_t process);

}  // namespace benchmarks

#endif
