// A node that hears any bytes: what is taken for a message says the same when it is sent again, and whatever is heard,
// the node keeps its lengths, sleeps in the end and tells of it.
#include "bench/network/nm_node.h"
#include "require.h"

namespace {

using fuzz::require;
using namespace bench::network;

constexpr std::size_t k_request_bytes = 6;

class Environment : public Nm_environment {
 public:
    void send(Nm_message const& message) override { require(decode(encode(message), k_request_bytes).has_value()); }
    void state_changed(Nm_state from, Nm_state to) override { require(from != to); }
    void network_state(Bits const& requests) override {
        require(requests.size() == k_request_bytes);
        last = requests;
    }

    Bits last{Bits(k_request_bytes)};
};

/// Pieces of the input, each as long as its first byte says.
std::vector<Bits> datagrams(std::uint8_t const* data, std::size_t size) {
    std::vector<Bits> pieces;
    while (size > 0) {
        std::size_t const length = std::min<std::size_t>(*data, size - 1);
        pieces.emplace_back(data + 1, data + 1 + length);
        data += 1 + length;
        size -= 1 + length;
    }
    return pieces;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Environment environment;
    Nm_node node(1, k_request_bytes, {}, environment);
    Time now{std::chrono::hours(1)};
    for (auto const& bytes : datagrams(data, size)) {
        if (auto const message = decode(bytes, k_request_bytes)) {
            require(encode(*message) == bytes);
            node.receive(*message, now);
            require(environment.last == node.network_state());
        }
        now += std::chrono::milliseconds(bytes.empty() ? 500 : bytes.back());
        node.advance(now);
    }
    for (int second = 0; second < 3; ++second) {
        now += std::chrono::seconds(1);
        node.advance(now);
    }
    require(node.state() == Nm_state::bus_sleep && !any(environment.last));
    return 0;
}
