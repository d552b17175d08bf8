#ifndef BENCH_NETWORK_NM_NODE_H
#define BENCH_NETWORK_NM_NODE_H

#include "bench/network/nm_message.h"
#include "bench/network/nm_state_machine.h"

#include <map>

namespace bench::network {

/// Where a node's doings go.
class Nm_environment {
 public:
    Nm_environment() = default;
    virtual ~Nm_environment() = default;
    Nm_environment(Nm_environment const&) = delete;
    Nm_environment& operator=(Nm_environment const&) = delete;

    virtual void send(Nm_message const& message) = 0;
    virtual void state_changed(Nm_state from, Nm_state to) = 0;

    /// The network state: what this node or another one requests. Told when it changes, and with an unchanged value
    /// once more when the bus goes from prepare bus sleep to bus sleep.
    virtual void network_state(Bits const& requests) = 0;
};

/// What is known of another node from its messages.
struct Nm_peer {
    Bits requests;  ///< zeros once it has been silent for the reset time
    Bits user_data;
    std::uint8_t control{0};
    Time heard{};
};

/// One node of the network: its requests and user data, the state machine, the other nodes. Time comes from outside:
/// every call tells it, and `advance` is to be called when `next_deadline` has come. One thread.
class Nm_node {
 public:
    /// `request_bytes` is the length of all requests of this network, 1 to `k_most_request_bytes`. The environment must
    /// outlive the node.
    Nm_node(std::uint8_t id, std::size_t request_bytes, Nm_timing const& timing, Nm_environment& environment);

    /// Adds to or takes from this node's requests; the network is requested while any is left. Bits behind the length
    /// of the requests are left out.
    void request(Bits const& bits, Time now);
    void release(Bits const& bits, Time now);

    void set_user_data(Bits const& data) { user_data_ = data; }

    /// A message from the bus. One with this node's own identifier is ignored.
    void receive(Nm_message const& message, Time now);

    /// Asks every node to show itself, which also wakes a sleeping bus.
    void want_repeat(Time now);

    /// A silent node is not heard by the others, and lives on as if it were.
    void set_silent(bool silent) { silent_ = silent; }

    std::optional<Time> next_deadline() const;
    void advance(Time now);

    std::uint8_t id() const { return id_; }
    Nm_state state() const { return machine_.state(); }
    bool silent() const { return silent_; }
    Bits const& requests() const { return requests_; }
    Bits const& user_data() const { return user_data_; }
    Bits network_state() const;
    std::map<std::uint8_t, Nm_peer> const& peers() const { return peers_; }

 private:
    void set_requests(Bits const& requests, Time now);
    void on_change(Nm_state from, Nm_state to, Time when);
    void announce();
    void send(Time now);
    std::uint8_t control() const;
    std::optional<Time> next_reset() const;
    void forget_unrepeated(Time now);

    std::uint8_t id_;
    Nm_timing timing_;
    Nm_environment& environment_;
    Nm_state_machine machine_;
    Bits requests_;
    Bits user_data_;
    Bits announced_;
    std::map<std::uint8_t, Nm_peer> peers_;
    std::optional<Time> next_send_;
    bool woke_the_bus_{false};
    bool wants_repeat_{false};
    bool silent_{false};
};

}  // namespace bench::network

#endif
