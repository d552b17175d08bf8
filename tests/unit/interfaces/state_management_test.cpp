#include "completed.h"
#include "support/fake_binding.h"
#include "tarq/com/exception.h"
#include "ximo/ap/statemanager/dsa_interface_proxy.h"
#include "ximo/ap/statemanager/dsa_interface_skeleton.h"
#include "ximo/ap/statemanager/state_management_alive_interface_proxy.h"
#include "ximo/ap/statemanager/state_management_alive_interface_skeleton.h"
#include "ximo/ap/statemanager/state_management_com_alive_interface_proxy.h"
#include "ximo/ap/statemanager/state_management_com_alive_interface_skeleton.h"
#include "ximo/ap/statemanager/state_management_cwu_interface_proxy.h"
#include "ximo/ap/statemanager/state_management_cwu_interface_skeleton.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace ximo::ap::statemanager {

namespace {

using ara::com::InstanceIdentifier;
using ara::com::MethodCallProcessingMode;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto k_event = MethodCallProcessingMode::kEvent;

// Each service writes down which method was called with what.
struct Alive : skeleton::StateManagementAliveInterfaceSkeleton {
    Alive() : StateManagementAliveInterfaceSkeleton(InstanceIdentifier("1"), k_event) {}
    com::Future<void> ReleaseAlive() override { return calls.emplace_back("release"), completed(); }
    com::Future<void> RequestAlive() override { return calls.emplace_back("request"), completed(); }
    std::vector<std::string> calls;
};

struct Com_alive : skeleton::StateManagementComAliveInterfaceSkeleton {
    Com_alive() : StateManagementComAliveInterfaceSkeleton(InstanceIdentifier("1"), k_event) {}
    com::Future<void> ReleaseComAlive(std::vector<std::uint8_t> const& bits) override {
        return released.push_back(bits), completed();
    }
    com::Future<void> RequestComAlive(std::vector<std::uint8_t> const& bits, std::uint8_t number) override {
        return requested.push_back(bits), numbers.push_back(number), completed();
    }
    std::vector<std::vector<std::uint8_t>> released;
    std::vector<std::vector<std::uint8_t>> requested;
    std::vector<int> numbers;
};

struct Car_wake_up : skeleton::StateManagementCWUInterfaceSkeleton {
    Car_wake_up() : StateManagementCWUInterfaceSkeleton(InstanceIdentifier("1"), k_event) {}
    com::Future<void> ReleaseCarWakeUp() override { return calls.push_back(-1), completed(); }
    com::Future<void> RequestCarWakeUp(std::uint8_t number) override { return calls.push_back(number), completed(); }
    std::vector<int> calls;
};

struct Dsa : skeleton::DSAInterfaceSkeleton {
    Dsa() : DSAInterfaceSkeleton(InstanceIdentifier("DSA_Interface"), k_event) {}
    com::Future<void> RequestRestart(std::uint8_t type) override { return types.push_back(type), completed(); }
    std::vector<int> types;
};

template <class Proxy>
Proxy proxy_of(std::string const& instance) {
    return Proxy(ara::com::ServiceHandle("", InstanceIdentifier(instance), ""));
}

TEST(State_management_interfaces, Ecu_alive_calls_reach_the_method_that_was_called) {
    test_support::Fake_binding binding;
    Alive service;
    service.OfferService();
    auto sut = proxy_of<proxy::StateManagementAliveInterfaceProxy>("1");

    sut.RequestAlive().get();
    sut.ReleaseAlive().get();

    EXPECT_THAT(service.calls, ElementsAre("request", "release"));
}

TEST(State_management_interfaces, Com_alive_calls_carry_bits_and_number) {
    test_support::Fake_binding binding;
    Com_alive service;
    service.OfferService();
    auto sut = proxy_of<proxy::StateManagementComAliveInterfaceProxy>("1");

    sut.RequestComAlive({1, 2, 0xff}, 16).get();
    sut.RequestComAlive({}, 0).get();
    sut.ReleaseComAlive({3}).get();

    EXPECT_THAT(service.requested, ElementsAre(ElementsAre(1, 2, 0xff), IsEmpty()));
    EXPECT_THAT(service.numbers, ElementsAre(16, 0));
    EXPECT_THAT(service.released, ElementsAre(ElementsAre(3)));
}

TEST(State_management_interfaces, Car_wake_up_calls_carry_the_number) {
    test_support::Fake_binding binding;
    Car_wake_up service;
    service.OfferService();
    auto sut = proxy_of<proxy::StateManagementCWUInterfaceProxy>("1");

    sut.RequestCarWakeUp(7).get();
    sut.ReleaseCarWakeUp().get();

    EXPECT_THAT(service.calls, ElementsAre(7, -1));
}

TEST(State_management_interfaces, A_restart_carries_its_type) {
    test_support::Fake_binding binding;
    Dsa service;
    service.OfferService();

    proxy_of<proxy::DSAInterfaceProxy>("DSA_Interface").RequestRestart(5).get();

    EXPECT_THAT(service.types, ElementsAre(5));
}

TEST(State_management_interfaces, Are_offered_under_their_names) {
    test_support::Fake_binding binding;
    Alive alive;
    Com_alive com_alive;
    Car_wake_up car_wake_up;
    Dsa dsa;

    alive.OfferService();
    com_alive.OfferService();
    car_wake_up.OfferService();
    dsa.OfferService();

    EXPECT_THAT(binding.record(), ElementsAre("offer ximo::ap::statemanager::StateManagementAliveInterface 1",
                                              "offer ximo::ap::statemanager::StateManagementComAliveInterface 1",
                                              "offer ximo::ap::statemanager::StateManagementCWUInterface 1",
                                              "offer ximo::ap::statemanager::DSAInterface DSA_Interface"));
}

}  // namespace

}  // namespace ximo::ap::statemanager
