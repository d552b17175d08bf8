#include "simulation/network.h"

#include "base/hex.h"
#include "tarq/udpnm/interface/network_state_interface_skeleton.h"
#include "tarq/udpnm/interface/user_data_interface_skeleton.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace simulation {

namespace {

namespace skeletons = tarq::udpnm::interface::skeleton;
using ara::com::InstanceIdentifier;
using ara::com::MethodCallProcessingMode;
using bench::network::Nm_state;
using User_data_output = tarq::udpnm::interface::GetUserData::Output;

constexpr std::size_t k_request_bytes = 6;
constexpr char const* k_instance = "1";

ximo::com::Future<void> done() {
    ximo::com::Promise<void> promise;
    promise.set_value();
    return promise.get_future();
}

Bits awake() {
    Bits bits(k_request_bytes);
    bits.front() = 0x80;
    return bits;
}

}  // namespace

std::string text_of(Bits const& bits) {
    return base::to_hex(bits);
}

class Network::Network_state_service : public skeletons::NetworkStateInterfaceSkeleton {
 public:
    explicit Network_state_service(Network& network)
        : NetworkStateInterfaceSkeleton(InstanceIdentifier(k_instance), MethodCallProcessingMode::kEvent),
          network_(network) {}

    ximo::com::Future<void> RequestNetwork(Bits const& bits) override {
        network_.begin("request", bits);
        if (bench::network::any_behind(bits, k_request_bytes)) {
            throw std::invalid_argument("the network has no such request bit");
        }
        network_.machine_.node.request(bits, network_.now());
        network_.machine_.arm();
        return done();
    }
    ximo::com::Future<void> ReleaseNetwork(Bits const& bits) override {
        network_.begin("release", bits);
        network_.machine_.node.release(bits, network_.now());
        network_.machine_.arm();
        return done();
    }

 private:
    Network& network_;
};

class Network::User_data_service : public skeletons::UserDataInterfaceSkeleton {
 public:
    explicit User_data_service(Network& network)
        : UserDataInterfaceSkeleton(InstanceIdentifier(k_instance), MethodCallProcessingMode::kEvent),
          network_(network) {}

    ximo::com::Future<User_data_output> GetUserData() override {
        ximo::com::Promise<User_data_output> promise;
        promise.set_value({network_.user_data()});
        return promise.get_future();
    }
    ximo::com::Future<void> SetUserData(Bits const& data) override {
        network_.begin("user data", data);
        network_.machine_.node.set_user_data(data);
        return done();
    }

 private:
    Network& network_;
};

Network::Player::Player(Network& network, char const* name, std::uint8_t id)
    : network_(network), name_(name), node(id, k_request_bytes, bench::network::Nm_timing(), *this) {}

// The other node hears it when this one is done.
void Network::Player::send(bench::network::Nm_message const& message) {
    auto& other = this == &network_.machine_ ? network_.others_ : network_.machine_;
    network_.stage_.events().after(Time(0), [&other, message] {
        other.node.receive(message, other.network_.now());
        other.arm();
    });
}

void Network::Player::state_changed(Nm_state /*from*/, Nm_state to) {
    network_.stage_.note(Kind::bus, name_, bench::network::name(to));
}

void Network::Player::network_state(Bits const& requests) {
    if (this == &network_.machine_ && network_.follows_bus_) {
        network_.report_later(requests);
    }
}

// Wakes the node at its next deadline, unless that has moved by then.
void Network::Player::arm() {
    auto const deadline = node.next_deadline();
    auto const alarm = ++alarm_;
    if (deadline) {
        network_.stage_.events().at(deadline->time_since_epoch(), [this, alarm] {
            if (alarm == alarm_) {
                node.advance(network_.now());
                arm();
            }
        });
    }
}

Network::Network(Stage& stage)
    : stage_(stage),
      machine_(*this, "machine", 1),
      others_(*this, "others", 2),
      network_state_(std::make_unique<Network_state_service>(*this)),
      user_data_(std::make_unique<User_data_service>(*this)) {
    network_state_->NetworkState.Update(machine_.node.network_state());
}

Network::~Network() = default;

void Network::offer() {
    when_free([this] {
        network_state_->OfferService();
        user_data_->OfferService();
    });
}

void Network::withdraw() {
    network_state_->StopOfferService();
    user_data_->StopOfferService();
}

// The driver waits for its call, and before for one of another thread's that is not over. Threads of applications wait
// beside it.
void Network::begin(char const* what, Bits const& bits) {
    auto const taken = std::min(takes_, k_patience);
    bool const is_silent = taken == k_patience;
    busy_until_ = std::max(busy_until_, stage_.now()) + taken;
    auto const was_awaited = std::exchange(is_awaited_, true);
    stage_.hold_up(busy_until_ - stage_.now());
    is_awaited_ = was_awaited;
    stage_.note(Kind::request, what, text_of(bits) + (is_silent ? ", unanswered" : fails_ ? ", failed" : ""));
    if (is_silent || fails_) {
        throw std::runtime_error(is_silent ? "the network manager does not answer" : "the network manager fails");
    }
}

void Network::when_free(std::function<void()> action) {
    if (!is_awaited_) {
        return action();
    }
    stage_.events().at(busy_until_, [this, action = std::move(action)]() mutable { when_free(std::move(action)); });
}

void Network::others_need(bool needed) {
    if (needed) {
        others_.node.request(awake(), now());
    } else {
        others_.node.release(awake(), now());
    }
    others_.arm();
}

void Network::wake() {
    follows_bus_ = false;
    report(awake());
}

void Network::sleep() {
    follows_bus_ = false;
    report(Bits(k_request_bytes));
    report(Bits(k_request_bytes));
}

void Network::follow_bus() {
    follows_bus_ = true;
    report(machine_.node.network_state());
}

void Network::report_only() {
    follows_bus_ = false;
}

void Network::report(Bits const& state) {
    stage_.note(Kind::network, "", text_of(state));
    network_state_->NetworkState.Update(state);
}

void Network::report_later(Bits const& state) {
    stage_.events().after(Time(0), [this, state] { report(state); });
}

}  // namespace simulation
