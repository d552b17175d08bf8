#include "ara/com/dds/calls/recent_requests.h"

#include "ara/com/dds/calls/request_number.h"

#include <cstdint>
#include <random>
#include <set>
#include <tuple>

#include <gtest/gtest.h>

namespace ara::com::dds {
namespace {

dds_SampleIdentity request(std::uint8_t client, std::int64_t number) {
    dds_SampleIdentity identity{};
    identity.writer_guid.guidPrefix[0] = client;
    identity.sequence_number = to_wire(number);
    return identity;
}

TEST(Recent_requests, Are_new_once_whoever_sends_them_in_whatever_order) {
    Recent_requests sut;
    std::mt19937 engine(1);
    auto const any_below = [&engine](int limit) { return std::uniform_int_distribution(0, limit - 1)(engine); };
    std::set<std::tuple<int, std::int64_t, dds_time_t>> known;
    for (int count = 0; count < 20'000 && known.size() < 256; ++count) {
        auto const client = static_cast<std::uint8_t>(any_below(3));
        std::int64_t const number = any_below(12) + std::int64_t{any_below(2)} * (std::int64_t{1} << 33);
        dds_time_t const written = any_below(5);
        EXPECT_EQ(sut.is_new(request(client, number), written), known.insert({client, number, written}).second);
    }
    EXPECT_GT(known.size(), 200U);
}

TEST(Recent_requests, Are_known_for_as_long_as_the_client_has_sent_255_others_and_no_longer) {
    Recent_requests sut;
    EXPECT_TRUE(sut.is_new(request(1, 1000), 1));
    for (std::int64_t number = 1; number < 256; ++number) {
        EXPECT_TRUE(sut.is_new(request(1, number), 1));
    }
    EXPECT_FALSE(sut.is_new(request(1, 1000), 1));
    EXPECT_TRUE(sut.is_new(request(1, 256), 1));
    EXPECT_TRUE(sut.is_new(request(1, 1000), 1)) << "memory grows without bounds";
}

TEST(Recent_requests, Of_the_client_that_was_silent_for_the_longest_time_make_room_for_a_new_one) {
    Recent_requests sut;
    for (std::uint8_t client = 0; client < 128; ++client) {
        EXPECT_TRUE(sut.is_new(request(client, 1), 1));
    }
    EXPECT_FALSE(sut.is_new(request(0, 1), 1));
    EXPECT_TRUE(sut.is_new(request(128, 1), 1));
    EXPECT_FALSE(sut.is_new(request(0, 1), 1));
    EXPECT_FALSE(sut.is_new(request(2, 1), 1));
    EXPECT_TRUE(sut.is_new(request(1, 1), 1)) << "memory grows without bounds";
}

}  // namespace
}  // namespace ara::com::dds
