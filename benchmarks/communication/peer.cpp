#include "benchmarks/communication/peer.h"

#include <csignal>

namespace benchmarks {

Peer::Peer(std::string const& mode, std::string const& argument) : process_({BENCHMARK_CALL_PEER, mode, argument}, {}) {
    line_of(process_);
}

void Peer::kill() {
    process_.signal(SIGKILL);
}

}  // namespace benchmarks
