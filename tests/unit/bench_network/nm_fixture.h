#ifndef TESTS_UNIT_BENCH_NETWORK_NM_FIXTURE_H
#define TESTS_UNIT_BENCH_NETWORK_NM_FIXTURE_H

#include "base/hex.h"
#include "bench/network/nm_node.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace bench::network {

/// Keeps what a node does.
class Recorded_environment : public Nm_environment {
 public:
    void send(Nm_message const& message) override { sent.push_back(message); }
    void state_changed(Nm_state /*from*/, Nm_state to) override { doings.emplace_back(name(to)); }
    void network_state(Bits const& requests) override { doings.push_back("[" + base::to_hex(requests) + "]"); }

    std::vector<Nm_message> sent;
    std::vector<std::string> doings;  ///< states entered and, in brackets, network states told
};

/// A node on a clock of its own: cycle 100 ms, repeat message 300 ms, time-out 400 ms, bus sleep 200 ms later, requests
/// forgotten after 250 ms.
class Nm_fixture : public testing::Test {
 protected:
    static constexpr std::uint8_t k_id = 1;
    static constexpr std::uint8_t k_other = 2;

    void pass(int count) {
        for (int passed = 0; passed < count; ++passed) {
            jump(1);
        }
    }
    /// Time that the node is told of only at its end.
    void jump(int count) {
        now += std::chrono::milliseconds(count);
        sut.advance(now);
    }
    void hear(Bits const& requests, std::uint8_t control = Control_bit::partial_network, std::uint8_t from = k_other) {
        sut.receive({from, control, requests, {0xaa}}, now);
    }
    /// The other node says the same every 100 ms, first now.
    void hear_during(int count, Bits const& requests) {
        for (int passed = 0; passed < count; passed += 100) {
            hear(requests);
            pass(100);
        }
    }
    std::vector<std::string> take_doings() { return std::exchange(environment.doings, {}); }

    Time now{std::chrono::hours(1)};
    Recorded_environment environment;
    Nm_node sut{k_id,
                2,
                {std::chrono::milliseconds(100), std::chrono::milliseconds(300), std::chrono::milliseconds(400),
                 std::chrono::milliseconds(200), std::chrono::milliseconds(250)},
                environment};
};

}  // namespace bench::network

#endif
