#include "bench/network/services.h"

#include "tarq/udpnm/interface/network_state_interface_skeleton.h"
#include "tarq/udpnm/interface/user_data_interface_skeleton.h"

namespace bench::network {

namespace {

namespace skeletons = tarq::udpnm::interface::skeleton;
using ara::com::InstanceIdentifier;
using ara::com::MethodCallProcessingMode;
using User_data_output = tarq::udpnm::interface::GetUserData::Output;
using ximo::com::Future;

}  // namespace

class Services::Network_state_service : public skeletons::NetworkStateInterfaceSkeleton {
 public:
    Network_state_service(InstanceIdentifier const& instance, Network_player& player, Pending_calls& calls)
        : NetworkStateInterfaceSkeleton(instance, MethodCallProcessingMode::kEvent), player_(player), calls_(calls) {}

    Future<void> RequestNetwork(Bits const& bits) override {
        return calls_.bring<void>("RequestNetwork", bits, [this, bits] {
            check(bits);
            player_.act([&](Nm_node& node, Time now) { node.request(bits, now); });
        });
    }

    Future<void> ReleaseNetwork(Bits const& bits) override {
        return calls_.bring<void>("ReleaseNetwork", bits, [this, bits] {
            player_.act([&](Nm_node& node, Time now) { node.release(bits, now); });
        });
    }

 private:
    // A bit that can't be requested would be a request that nobody hears.
    void check(Bits const& bits) const {
        if (any_behind(bits, player_.options().request_bytes)) {
            throw std::invalid_argument("the network has no such request bit");
        }
    }

    Network_player& player_;
    Pending_calls& calls_;
};

class Services::User_data_service : public skeletons::UserDataInterfaceSkeleton {
 public:
    User_data_service(InstanceIdentifier const& instance, Network_player& player, Pending_calls& calls)
        : UserDataInterfaceSkeleton(instance, MethodCallProcessingMode::kEvent), player_(player), calls_(calls) {}

    Future<User_data_output> GetUserData() override {
        return calls_.bring<User_data_output>("GetUserData", {},
                                              [this] { return User_data_output{player_.node().user_data()}; });
    }

    Future<void> SetUserData(Bits const& data) override {
        return calls_.bring<void>("SetUserData", data, [this, data] { set(data); });
    }

 private:
    void set(Bits const& data) {
        if (data.size() > k_most_user_data) {
            throw std::invalid_argument("user data that long does not fit into a message");
        }
        bool const is_new = data != player_.node().user_data();
        player_.act([&](Nm_node& node, Time /*now*/) { node.set_user_data(data); });
        if (is_new) {
            UserDataChanged.Send(data);
        }
    }

    Network_player& player_;
    Pending_calls& calls_;
};

Services::Services(std::string const& instance, bool tells_first_state, Network_player& player, Control_loop& loop)
    : player_(player),
      calls_(loop),
      network_state_(std::make_unique<Network_state_service>(InstanceIdentifier(instance), player, calls_)),
      user_data_(std::make_unique<User_data_service>(InstanceIdentifier(instance), player, calls_)) {
    if (tells_first_state) {
        network_state_->NetworkState.Update(player_.node().network_state());
    }
    player_.on_network_state([this, &loop](Bits const& requests) {
        try {
            network_state_->NetworkState.Update(requests);
        } catch (std::exception const& error) {
            loop.event("failed", {{"error", error.what()}});
        }
    });
    offer();
}

Services::~Services() {
    player_.on_network_state({});
    withdraw();
}

void Services::offer() {
    calls_.open();
    network_state_->OfferService();
    user_data_->OfferService();
}

// The handler that runs is waited for, so whatever it waits for ends first.
void Services::withdraw() {
    calls_.close();
    network_state_->StopOfferService();
    user_data_->StopOfferService();
}

}  // namespace bench::network
