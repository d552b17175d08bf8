#ifndef SIMULATION_NETWORK_H
#define SIMULATION_NETWORK_H

#include "bench/network/nm_node.h"
#include "simulation/stage.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace simulation {

using Bits = bench::network::Bits;

/// The network manager with its two services, its node on the bus, and the other nodes of the vehicle as one.
///
/// Nodes are those of the virtual vehicle, on a bus that loses and delays nothing. What the daemon asks of the manager
/// is done before the call returns; the manager's reports come when the driver waits next.
class Network {
 public:
    explicit Network(Stage& stage);
    ~Network();
    Network(Network const&) = delete;
    Network& operator=(Network const&) = delete;

    /// Of who calls the manager.
    static constexpr Time k_patience = std::chrono::seconds(2);

    /// The manager offers its services, or withdraws them; it lives on.
    void offer();
    void withdraw();

    /// Its calls fail from now on, or succeed again.
    void fail(bool fails) { fails_ = fails; }

    /// It takes a time for each call, one after the other; one that would take as long as a caller waits never answers,
    /// and does nothing.
    void answer_after(Time time) { takes_ = time; }

    /// Done at once, or when nobody waits for an answer of the manager's any more: what applications lead to waits for
    /// it.
    void when_free(std::function<void()> action);

    /// The rest of the vehicle needs the network, or no longer.
    void others_need(bool needed);

    /// From now on the manager reports the network awake or asleep, whatever the bus does: the new state, twice where
    /// that is rest. `follow_bus` ends that.
    void wake();
    void sleep();
    void follow_bus();

    /// From now on the manager reports what it is told here, and nothing else.
    void report_only();
    void tell(Bits const& state) { report(state); }

    /// What the daemon has requested and not released; its user data.
    Bits const& requested() const { return machine_.node.requests(); }
    Bits const& user_data() const { return machine_.node.user_data(); }

 private:
    class Network_state_service;
    class User_data_service;

    /// One node and its way onto the bus.
    class Player : public bench::network::Nm_environment {
     public:
        Player(Network& network, char const* name, std::uint8_t id);
        void send(bench::network::Nm_message const& message) override;
        void state_changed(bench::network::Nm_state from, bench::network::Nm_state to) override;
        void network_state(Bits const& requests) override;
        void arm();

        Network& network_;
        char const* name_;
        bench::network::Nm_node node;

     private:
        std::uint64_t alarm_{0};
    };

    bench::network::Time now() const { return bench::network::Time(stage_.now()); }
    void begin(char const* what, Bits const& bits);
    void report(Bits const& state);
    void report_later(Bits const& state);

    Stage& stage_;
    Player machine_;
    Player others_;
    bool fails_{false};
    Time takes_{0};
    Time busy_until_{0};
    bool is_awaited_{false};  ///< by the driver
    bool follows_bus_{true};
    std::unique_ptr<Network_state_service> network_state_;
    std::unique_ptr<User_data_service> user_data_;
};

/// Bytes as "00 00 01".
std::string text_of(Bits const& bits);

}  // namespace simulation

#endif
