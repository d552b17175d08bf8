#include "bench/network/capture_file.h"

#include <stdexcept>

namespace bench::network {

namespace {

constexpr std::uint32_t k_nanosecond_pcap = 0xa1b23c4d;
constexpr std::uint32_t k_raw_ip = 101;
constexpr std::uint32_t k_longest_packet = 65535;
constexpr std::size_t k_ip_header = 20;
constexpr std::size_t k_udp_header = 8;
constexpr std::uint8_t k_udp = 17;

void add_16(Bits& bytes, std::size_t value) {
    bytes.push_back(static_cast<std::uint8_t>(value >> 8U));
    bytes.push_back(static_cast<std::uint8_t>(value));
}

void add_address(Bits& bytes, std::uint32_t address) {
    add_16(bytes, address >> 16U);
    add_16(bytes, address & 0xffffU);
}

void put_16(Bits& bytes, std::size_t position, std::uint16_t value) {
    bytes[position] = static_cast<std::uint8_t>(value >> 8U);
    bytes[position + 1] = static_cast<std::uint8_t>(value);
}

/// The Internet checksum (RFC 1071).
std::uint16_t checksum(Bits const& bytes) {
    std::uint32_t sum = 0;
    for (std::size_t position = 0; position < bytes.size(); ++position) {
        sum += static_cast<std::uint32_t>(bytes[position]) << (position % 2 == 0 ? 8U : 0U);
    }
    while (sum > 0xffffU) {
        sum = (sum & 0xffffU) + (sum >> 16U);
    }
    return static_cast<std::uint16_t>(~sum);
}

Bits ip_header(Endpoint const& from, Endpoint const& to, std::size_t length) {
    Bits header{0x45, 0x00};  // version 4, five words, no service class
    add_16(header, length);
    add_16(header, 0);       // identification
    add_16(header, 0x4000);  // not to be fragmented
    header.push_back(64);    // time to live
    header.push_back(k_udp);
    add_16(header, 0);
    add_address(header, from.address);
    add_address(header, to.address);
    put_16(header, 10, checksum(header));
    return header;
}

Bits udp_datagram(Endpoint const& from, Endpoint const& to, Bits const& payload) {
    auto const length = k_udp_header + payload.size();
    Bits datagram;
    add_16(datagram, from.port);
    add_16(datagram, to.port);
    add_16(datagram, length);
    add_16(datagram, 0);
    datagram.insert(datagram.end(), payload.begin(), payload.end());

    Bits covered;  // the checksum covers a pseudo header too
    add_address(covered, from.address);
    add_address(covered, to.address);
    add_16(covered, k_udp);
    add_16(covered, length);
    covered.insert(covered.end(), datagram.begin(), datagram.end());
    auto const sum = checksum(covered);
    put_16(datagram, 6, sum == 0 ? std::uint16_t{0xffff} : sum);  // 0 would mean: none was computed
    return datagram;
}

void write_32(std::ostream& out, std::uint32_t value) {
    for (unsigned shift = 0; shift < 32; shift += 8) {
        out.put(static_cast<char>(value >> shift));
    }
}

}  // namespace

Bits ip_packet(Endpoint const& from, Endpoint const& to, Bits const& payload) {
    auto const datagram = udp_datagram(from, to, payload);
    auto packet = ip_header(from, to, k_ip_header + datagram.size());
    packet.insert(packet.end(), datagram.begin(), datagram.end());
    return packet;
}

Capture_file::Capture_file(std::string const& path) : file_(path, std::ios::binary | std::ios::trunc) {
    constexpr std::uint32_t k_version_2_4 = 2U | 4U << 16U;
    for (auto const word : {k_nanosecond_pcap, k_version_2_4, 0U, 0U, k_longest_packet, k_raw_ip}) {
        write_32(file_, word);
    }
    if (!file_.flush()) {
        throw std::runtime_error(path + " can't be written");
    }
}

void Capture_file::add(Wall_time when, Endpoint const& from, Endpoint const& to, Bits const& payload) {
    auto const packet = ip_packet(from, to, payload);
    auto const since_epoch = when.time_since_epoch();
    auto const seconds = std::chrono::floor<std::chrono::seconds>(since_epoch);
    write_32(file_, static_cast<std::uint32_t>(seconds.count()));
    write_32(file_, static_cast<std::uint32_t>((since_epoch - seconds).count()));
    write_32(file_, static_cast<std::uint32_t>(packet.size()));
    write_32(file_, static_cast<std::uint32_t>(packet.size()));
    file_.write(reinterpret_cast<char const*>(packet.data()), static_cast<std::streamsize>(packet.size()));
    file_.flush();
}

}  // namespace bench::network
