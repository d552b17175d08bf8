#ifndef BENCHMARKS_IDLE_PROCESS_USAGE_H
#define BENCHMARKS_IDLE_PROCESS_USAGE_H

#include <cstdint>
#include <map>
#include <string>

#include <sys/types.h>

namespace benchmarks {

/// What a thread has had of the processors so far, user and system.
struct Thread_usage {
    std::string name;
    std::int64_t running_ns{0};
    std::int64_t runs{0};  ///< how often it was given a processor
};

/// All present threads of a process by their ids.
using Usage = std::map<pid_t, Thread_usage>;
Usage usage_of(pid_t process);

/// What each thread has had since `before`; threads that have ended since are left out.
Usage operator-(Usage const& now, Usage const& before);
std::int64_t running_ns(Usage const& usage);

/// Resident memory of a process in KiB, shared pages included; of that what belongs to no file.
struct Memory {
    std::int64_t resident_kib{0};
    std::int64_t anonymous_kib{0};
};
Memory memory_of(pid_t process);

}  // namespace benchmarks

#endif
