#ifndef BENCHMARKS_MACHINE_PROCESS_MEMORY_H
#define BENCHMARKS_MACHINE_PROCESS_MEMORY_H

#include "bench/process/child_process.h"

#include <string>

namespace benchmarks {

/// What a process holds, in KiB.
struct Process_memory {
    long resident;
    long allocated;  ///< from the heap, by whomever: the engine included
};

/// Of this process.
Process_memory own_memory();

/// Answers each byte of the standard input with what this process holds, until the input ends.
void answer_with_memory();

/// Of a process that answers so. Throws `std::runtime_error` when it has ended.
Process_memory memory_of(bench::Child_process& process);

/// The next line of what the process writes. Throws `std::runtime_error` when it has ended.
std::string line_of(bench::Child_process& process);

/// One process's memory over time.
class Memory_course {
 public:
    void add(Process_memory const& now);

    void print(std::string const& process) const;

    /// A row for each of both sizes, named "DOINGS, PROCESS resident at the end": at most 64 KiB more than at the start
    /// are wanted. A process that takes and gives back pages has the same.
    void tell(std::string const& doings, std::string const& process) const;

 private:
    int count_{0};
    Process_memory first_{};
    Process_memory last_{};
    Process_memory most_{};
};

}  // namespace benchmarks

#endif
