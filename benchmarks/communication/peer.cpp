#include "benchmarks/communication/peer.h"

#include <csignal>
#include <sstream>
#include <stdexcept>

#include <unistd.h>

namespace benchmarks {

Peer::Peer(std::string const& mode, std::string const& argument) : process_({BENCHMARK_CALL_PEER, mode, argument}, {}) {
    line();
}

// What the peer has written until then.
std::string Peer::line() {
    std::string line;
    for (char letter = 0; letter != '\n'; line += letter) {
        if (::read(process_.output(), &letter, 1) != 1) {
            throw std::runtime_error("The other side of the calls has ended");
        }
    }
    return line;
}

Process_memory Peer::memory() {
    if (::write(process_.input(), "\n", 1) != 1) {
        throw std::runtime_error("The other side of the calls has ended");
    }
    Process_memory memory{};
    std::istringstream(line()) >> memory.resident >> memory.allocated;
    return memory;
}

void Peer::kill() {
    process_.signal(SIGKILL);
}

}  // namespace benchmarks
