#ifndef BENCHMARKS_COMMUNICATION_PEER_H
#define BENCHMARKS_COMMUNICATION_PEER_H

#include "bench/process/child_process.h"
#include "benchmarks/machine/process_memory.h"

#include <string>
#include <vector>

namespace benchmarks {

/// The other side of the calls as a process (call_peer.cpp), ready when the constructor returns.
class Peer {
 public:
    Peer(std::string const& mode, std::string const& argument);

    void kill();

    /// Of the process, which waits for nothing else meanwhile.
    Process_memory memory() { return memory_of(process_); }

 private:
    bench::Child_process process_;
};

}  // namespace benchmarks

#endif
