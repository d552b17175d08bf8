#include "benchmarks/communication/peer.h"

#include <csignal>
#include <stdexcept>

#include <unistd.h>

namespace benchmarks {

Peer::Peer(std::string const& mode, std::string const& argument) : process_({BENCHMARK_CALL_PEER, mode, argument}, {}) {
    char byte = 0;
    while (byte != '\n') {
        if (::read(process_.output(), &byte, 1) != 1) {
            throw std::runtime_error("The other side of the calls has ended");
        }
    }
}

void Peer::kill() {
    process_.signal(SIGKILL);
}

}  // namespace benchmarks
