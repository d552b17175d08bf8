#ifndef BENCH_NETWORK_CAPTURE_FILE_H
#define BENCH_NETWORK_CAPTURE_FILE_H

#include "bench/network/bits.h"
#include "bench/network/endpoint.h"

#include <chrono>
#include <fstream>
#include <string>

namespace bench::network {

/// A capture file (pcap, nanosecond times, link type 101: raw IP) that protocol analysers read. Each datagram is
/// written with IP and UDP headers as it had them, and at once, so that the file can be followed while it grows.
class Capture_file {
 public:
    using Wall_time = std::chrono::time_point<std::chrono::system_clock, std::chrono::nanoseconds>;

    /// Begins the file anew. Throws `std::runtime_error` when it can't be written.
    explicit Capture_file(std::string const& path);

    void add(Wall_time when, Endpoint const& from, Endpoint const& to, Bits const& payload);

 private:
    std::ofstream file_;
};

/// The IPv4 packet with one UDP datagram, checksums included.
Bits ip_packet(Endpoint const& from, Endpoint const& to, Bits const& payload);

}  // namespace bench::network

#endif
