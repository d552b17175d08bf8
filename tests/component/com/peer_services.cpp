#include "peer_services.h"

#include <cstdio>
#include <mutex>
#include <stdexcept>

namespace com_test {

namespace {

using ara::com::InstanceIdentifier;
using nlohmann::json;

constexpr auto k_event = ara::com::MethodCallProcessingMode::kEvent;

ximo::com::Future<void> completed() {
    ximo::com::Promise<void> promise;
    promise.set_value();
    return promise.get_future();
}

}  // namespace

void print(json const& message) {
    static std::mutex mutex;
    std::lock_guard const lock(mutex);
    std::puts(message.dump().c_str());
    std::fflush(stdout);
}

Com_alive::Com_alive(std::string const& name, Tell tell, std::shared_future<void> gate)
    : StateManagementComAliveInterfaceSkeleton(InstanceIdentifier(name), k_event),
      name_(name),
      tell_(std::move(tell)),
      gate_(std::move(gate)) {}

ximo::com::Future<void> Com_alive::ReleaseComAlive(Bytes const& cab_bits) {
    tell_({{"event", "release"}, {"instance", name_}, {"bytes", cab_bits}});
    return completed();
}

ximo::com::Future<void> Com_alive::RequestComAlive(Bytes const& cab_bits, std::uint8_t ac_number) {
    tell_({{"event", "request"}, {"instance", name_}, {"bytes", cab_bits}, {"number", ac_number}});
    if (ac_number == k_throw) {
        throw std::runtime_error("as told");
    }
    if (ac_number == k_wait) {
        gate_.wait();
    }
    if (ac_number == k_break_promise) {
        return ximo::com::Promise<void>().get_future();
    }
    return completed();
}

Network::Network(std::string const& name, Tell tell, std::shared_future<void> gate)
    : NetworkStateInterfaceSkeleton(InstanceIdentifier(name), k_event),
      name_(name),
      tell_(std::move(tell)),
      gate_(std::move(gate)) {}

ximo::com::Future<void> Network::RequestNetwork(Bytes const& bits) {
    tell_({{"event", "request network"}, {"instance", name_}, {"bytes", bits}});
    if (bits == Bytes{k_wait}) {
        gate_.wait();
    }
    return completed();
}

ximo::com::Future<void> Network::ReleaseNetwork(Bytes const& bits) {
    tell_({{"event", "release network"}, {"instance", name_}, {"bytes", bits}});
    return completed();
}

User_data::User_data(std::string const& name) : UserDataInterfaceSkeleton(InstanceIdentifier(name), k_event) {}

ximo::com::Future<tarq::udpnm::interface::GetUserData::Output> User_data::GetUserData() {
    ximo::com::Promise<tarq::udpnm::interface::GetUserData::Output> promise;
    promise.set_value({data_});
    return promise.get_future();
}

ximo::com::Future<void> User_data::SetUserData(Bytes const& data) {
    data_ = data;
    return completed();
}

void Peer_services::offer(std::string const& name) {
    auto& services = offered_[name];
    services.network = std::make_unique<Network>(name, tell_, gate_);
    services.user_data = std::make_unique<User_data>(name);
    services.com_alive = std::make_unique<Com_alive>(name, tell_, gate_);
    services.network->OfferService();
    services.user_data->OfferService();
    services.com_alive->OfferService();
}

void Peer_services::let_go() {
    if (!std::exchange(is_open_, true)) {
        open_.set_value();
    }
}

}  // namespace com_test
