#ifndef BENCHMARKS_COMMUNICATION_PROCESS_MEMORY_H
#define BENCHMARKS_COMMUNICATION_PROCESS_MEMORY_H

#include <fstream>
#include <string>

#include <malloc.h>

namespace benchmarks {

/// What a process holds, in KiB.
struct Process_memory {
    long resident;
    long allocated;  ///< from the heap, by whomever: the engine included
};

/// Of this process.
inline Process_memory own_memory() {
    std::ifstream status("/proc/self/status");
    long resident = 0;
    for (std::string word; status >> word && word != "VmRSS:";) {
    }
    status >> resident;
    auto const heap = mallinfo2();
    return {resident, static_cast<long>((heap.uordblks + heap.hblkhd) / 1024)};
}

}  // namespace benchmarks

#endif
