#ifndef BENCH_NETWORK_NM_SOCKET_H
#define BENCH_NETWORK_NM_SOCKET_H

#include "bench/network/bits.h"
#include "bench/network/endpoint.h"

#include <optional>

namespace bench::network {

/// A datagram as it arrived.
struct Datagram {
    Endpoint from;
    Bits bytes;
};

/// The UDP port of a node. Nothing here blocks.
class Nm_socket {
 public:
    /// Throws `std::system_error` when the address can't be had.
    explicit Nm_socket(Endpoint const& own);
    ~Nm_socket();
    Nm_socket(Nm_socket const&) = delete;
    Nm_socket& operator=(Nm_socket const&) = delete;

    /// A datagram that the system does not take, or that nobody waits for, is lost like one on a real bus.
    void send(Endpoint const& to, Bits const& bytes) const;

    /// The next datagram that has arrived; nothing when none waits.
    std::optional<Datagram> receive() const;

    int descriptor() const { return descriptor_; }

 private:
    int descriptor_;
};

}  // namespace bench::network

#endif
