#include "status/network_status.h"

#include "status/page_writer.h"

#include <climits>

namespace status {

namespace {

// For the section of the network, whose writers the binding keeps apart: where they meet all the same, the one that
// came second writes nothing.
class Network_change {
 public:
    explicit Network_change(Shared_word& sequence) : sequence_(sequence) {
        auto even = sequence_.load(std::memory_order_acquire);
        is_mine_ = even % 2 == 0 && sequence_.compare_exchange_strong(even, even + 1);
    }
    ~Network_change() {
        if (is_mine_) {
            sequence_.fetch_add(1, std::memory_order_release);
        }
    }
    Network_change(Network_change const&) = delete;
    Network_change& operator=(Network_change const&) = delete;

    bool is_mine() const { return is_mine_; }

 private:
    Shared_word& sequence_;
    bool is_mine_{false};
};

std::uint64_t first_bytes(std::uint8_t const* bytes, std::size_t count) {
    std::uint64_t word = 0;
    for (std::size_t i = 0; i < count && i < sizeof word; ++i) {
        word |= std::uint64_t{bytes[i]} << CHAR_BIT * i;
    }
    return word;
}

}  // namespace

void ecu_state(std::uint64_t state) {
    if (auto* const page = status::page()) {
        auto& network = page->network;
        Network_change const change(network.sequence);
        if (change.is_mine() && (own(network.ecu_state) != state || own(network.ecu_since) == 0)) {
            put(network.ecu_state, state);
            put(network.ecu_since, now());
        }
    }
}

void network_state(std::uint8_t const* bytes, std::size_t count) {
    if (auto* const page = status::page()) {
        auto& network = page->network;
        Network_change const change(network.sequence);
        if (change.is_mine()) {
            auto const at = now();
            put(network.state, bytes, count);
            put(network.reported_at, at);
            add(network.reports);
            tell(*page, page->network_ring, at, Event_kind::network_state,
                 {own(network.ecu_state), first_bytes(bytes, count)});
        }
    }
}

void call_failed(Network_call call) {
    if (auto* const page = status::page()) {
        auto& counters = page->counters;
        put(counters.call_failed_at, now());
        counters.failed_calls[static_cast<std::size_t>(call)].fetch_add(1, std::memory_order_release);
    }
}

}  // namespace status
