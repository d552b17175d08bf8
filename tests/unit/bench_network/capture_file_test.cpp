#include "bench/network/capture_file.h"

#include "support/temporary_directory.h"

#include <algorithm>
#include <iterator>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace bench::network {
namespace {

using testing::ElementsAre;

constexpr Endpoint k_from{0x7f00000b, 30500};
constexpr Endpoint k_to{0x7f00000c, 30501};

std::vector<std::uint8_t> content_of(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// RFC 1071: over a header with its checksum the sum is all ones.
std::uint32_t ones_sum(Bits const& bytes) {
    std::uint32_t sum = 0;
    for (std::size_t position = 0; position < bytes.size(); ++position) {
        sum += position % 2 == 0 ? bytes[position] * 256U : bytes[position];
        sum = (sum & 0xffffU) + (sum >> 16U);
    }
    return sum;
}

TEST(Ip_packet_test, Its_checksums_are_right_for_even_and_odd_lengths) {
    for (Bits const& payload : {Bits{}, Bits{0x0b}, Bits{0x0b, 0x40}, Bits(65, 0xff)}) {
        auto const packet = ip_packet(k_from, k_to, payload);
        EXPECT_EQ(ones_sum({packet.begin(), packet.begin() + 20}), 0xffffU);
        Bits covered{127, 0, 0, 11, 127, 0, 0, 12, 0, 17, 0, static_cast<std::uint8_t>(8 + payload.size())};
        std::copy(packet.begin() + 20, packet.end(), std::back_inserter(covered));
        EXPECT_EQ(ones_sum(covered), 0xffffU) << payload.size();
    }
}

TEST(Ip_packet_test, A_checksum_that_comes_out_as_0_is_written_as_all_ones) {
    auto const empty = ip_packet(k_from, k_to, {0, 0});
    Bits const checksum{empty[26], empty[27]};  // as payload it takes the sum to all ones
    auto const packet = ip_packet(k_from, k_to, checksum);
    EXPECT_THAT(Bits(packet.begin() + 26, packet.begin() + 28), ElementsAre(0xff, 0xff));
}

TEST(Capture_file_test, Begins_with_the_header_of_nanosecond_captures_of_raw_ip) {
    test_support::Temporary_directory const directory;
    auto const path = (directory.path() / "nm.pcap").string();
    Capture_file const sut(path);
    EXPECT_THAT(content_of(path), ElementsAre(0x4d, 0x3c, 0xb2, 0xa1, 2, 0, 4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xff, 0,
                                              0, 101, 0, 0, 0));
}

TEST(Capture_file_test, Each_datagram_is_there_at_once_with_time_and_length) {
    test_support::Temporary_directory const directory;
    auto const path = (directory.path() / "nm.pcap").string();
    Capture_file sut(path);
    sut.add(Capture_file::Wall_time(std::chrono::seconds(0x01020304) + std::chrono::nanoseconds(5)), k_from, k_to, {9});
    auto const content = content_of(path);
    ASSERT_EQ(content.size(), 24U + 16U + 29U);
    EXPECT_THAT(Bits(content.begin() + 24, content.begin() + 40),
                ElementsAre(4, 3, 2, 1, 5, 0, 0, 0, 29, 0, 0, 0, 29, 0, 0, 0));
    EXPECT_EQ(Bits(content.begin() + 40, content.end()), ip_packet(k_from, k_to, {9}));
}

}  // namespace
}  // namespace bench::network
