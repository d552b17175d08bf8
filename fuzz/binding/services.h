#ifndef FUZZ_BINDING_SERVICES_H
#define FUZZ_BINDING_SERVICES_H

#include "require.h"
#include "tarq/udpnm/interface/network_state_interface_skeleton.h"
#include "tarq/udpnm/interface/user_data_interface_skeleton.h"
#include "ximo/ap/statemanager/dsa_interface_skeleton.h"
#include "ximo/ap/statemanager/state_management_alive_interface_skeleton.h"
#include "ximo/ap/statemanager/state_management_com_alive_interface_skeleton.h"
#include "ximo/ap/statemanager/state_management_cwu_interface_skeleton.h"

#include <cstdint>
#include <vector>

namespace fuzz {

// The six services, each of which does at once what it is asked.

using namespace ximo::ap::statemanager;  // NOLINT(google-build-using-namespace): skeletons and proxies
namespace udpnm = tarq::udpnm::interface;
using Octets = std::vector<std::uint8_t>;

constexpr std::size_t k_most_octets = 1024;

inline ximo::com::Future<void> done(Octets const& octets = {}) {
    require(octets.size() <= k_most_octets);
    ximo::com::Promise<void> promise;
    promise.set_value();
    return promise.get_future();
}

/// A service as it is offered.
template <class Skeleton>
class Served : public Skeleton {
 public:
    Served() : Skeleton(ara::com::InstanceIdentifier("app"), ara::com::MethodCallProcessingMode::kEvent) {}
    ~Served() override { this->StopOfferService(); }
};

struct Alive : Served<skeleton::StateManagementAliveInterfaceSkeleton> {
    ximo::com::Future<void> ReleaseAlive() override { return done(); }
    ximo::com::Future<void> RequestAlive() override { return done(); }
};
struct Com_alive : Served<skeleton::StateManagementComAliveInterfaceSkeleton> {
    ximo::com::Future<void> ReleaseComAlive(Octets const& bits) override { return done(bits); }
    ximo::com::Future<void> RequestComAlive(Octets const& bits, std::uint8_t /*number*/) override { return done(bits); }
};
struct Wake_up : Served<skeleton::StateManagementCWUInterfaceSkeleton> {
    ximo::com::Future<void> ReleaseCarWakeUp() override { return done(); }
    ximo::com::Future<void> RequestCarWakeUp(std::uint8_t /*number*/) override { return done(); }
};
struct Restart : Served<skeleton::DSAInterfaceSkeleton> {
    ximo::com::Future<void> RequestRestart(std::uint8_t /*type*/) override { return done(); }
};
struct Network : Served<udpnm::skeleton::NetworkStateInterfaceSkeleton> {
    ximo::com::Future<void> RequestNetwork(Octets const& bits) override { return done(bits); }
    ximo::com::Future<void> ReleaseNetwork(Octets const& bits) override { return done(bits); }
};
struct User_data : Served<udpnm::skeleton::UserDataInterfaceSkeleton> {
    ximo::com::Future<udpnm::GetUserData::Output> GetUserData() override {
        ximo::com::Promise<udpnm::GetUserData::Output> promise;
        promise.set_value({data});
        return promise.get_future();
    }
    ximo::com::Future<void> SetUserData(Octets const& octets) override {
        data = octets;
        return done(octets);
    }

    Octets data;
};

}  // namespace fuzz

#endif
