#ifndef TESTS_COMPONENT_BENCH_NETWORK_NETWORK_FIXTURE_H
#define TESTS_COMPONENT_BENCH_NETWORK_NETWORK_FIXTURE_H

#include "bench/network/nm_socket.h"
#include "bench/process/player.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <unistd.h>

namespace bench::network {

/// Addresses that only this process uses, so that tests can run beside each other: 127.x.y.11 and so on.
class Network_fixture : public testing::Test {
 protected:
    static std::uint32_t address(unsigned node) {
        auto const process = static_cast<unsigned>(::getpid());
        return 127U << 24U | (process >> 8U & 0xffU) << 16U | (process & 0xffU) << 8U | node;
    }
    static std::string text(unsigned node) { return address_text(address(node)); }

    static std::vector<std::string> words(unsigned node, std::vector<unsigned> const& others,
                                          std::vector<std::string> const& options = {}) {
        std::vector<std::string> result{BENCH_NETWORK_NODE, text(node)};
        for (auto const other : others) {
            result.push_back(text(other));
        }
        result.insert(result.end(), options.begin(), options.end());
        return result;
    }
};

}  // namespace bench::network

#endif
