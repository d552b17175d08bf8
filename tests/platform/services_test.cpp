// The service handler among a network manager and an application of this process.

#include "statemanager/service_handler/nm_interface.h"
#include "statemanager/service_handler/service_handler.h"
#include "statemanager/services/state_manager_com_alive_interface.h"
#include "statemanager/states/prepared_sd_state.h"
#include "tarq/udpnm/interface/network_state_interface_skeleton.h"
#include "tarq/udpnm/interface/user_data_interface_skeleton.h"
#include "told/told.h"
#include "ximo/ap/statemanager/state_management_alive_interface_proxy.h"
#include "ximo/ap/statemanager/state_management_com_alive_interface_proxy.h"

#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace {

using ara::com::Octets;
using testing::Contains;
using testing::ElementsAre;

constexpr auto k_event = ara::com::MethodCallProcessingMode::kEvent;

ximo::com::Future<void> done() {
    ximo::com::Promise<void> promise;
    promise.set_value();
    return promise.get_future();
}

/// Remembers what is requested, released and set.
class Network_state : public tarq::udpnm::interface::skeleton::NetworkStateInterfaceSkeleton {
 public:
    Network_state() : NetworkStateInterfaceSkeleton(ara::com::InstanceIdentifier("nm"), k_event) {}
    ximo::com::Future<void> RequestNetwork(Octets const& bits) override { return requested.push_back(bits), done(); }
    ximo::com::Future<void> ReleaseNetwork(Octets const& bits) override { return released.push_back(bits), done(); }
    std::vector<Octets> requested;
    std::vector<Octets> released;
};

class User_data : public tarq::udpnm::interface::skeleton::UserDataInterfaceSkeleton {
 public:
    User_data() : UserDataInterfaceSkeleton(ara::com::InstanceIdentifier("nm"), k_event) {}
    ximo::com::Future<tarq::udpnm::interface::GetUserData::Output> GetUserData() override {
        ximo::com::Promise<tarq::udpnm::interface::GetUserData::Output> promise;
        promise.set_value({data});
        return promise.get_future();
    }
    ximo::com::Future<void> SetUserData(Octets const& value) override { return data = value, done(); }
    Octets data;
};

std::vector<std::string>& lines() {
    static auto& all = *new std::vector<std::string>;
    return all;
}

class Services_in_one_process : public testing::Test {
 protected:
    Services_in_one_process() {
        lines().clear();
        told::listen([](told::Line const& line) { lines().push_back(std::string(line.whom) + ' ' += line.what); });
        configuration.set_nm_usage(true);
        configuration.set_max_apps_ecualive(1);
        configuration.set_max_apps_comalive(1);
        configuration.add_apps_ecualive("door");
        configuration.add_apps_comalive("radio");
        Service_handler::Com_alive_services com_alive;
        com_alive.push_back(std::make_unique<ximo::ap::statemanager::State_manager_com_alive_interface>("radio"));
        sut = std::make_unique<Service_handler>(configuration, std::make_unique<ximo::ap::statemanager::Nm_interface>(),
                                                std::move(com_alive), Service_handler::Cwu_services());
    }

    void find_network_management() {
        sut->init();
        network_state.OfferService();
        user_data.OfferService();
    }

    using Service_handler = ximo::ap::statemanager::Service_handler;
    ximo::ap::statemanager::config::State_manager_config configuration;
    Network_state network_state;
    User_data user_data;
    std::unique_ptr<Service_handler> sut;
};

TEST_F(Services_in_one_process, Network_management_is_found_when_it_offers_both_services) {
    sut->init();
    network_state.OfferService();
    EXPECT_FALSE(sut->nm_interface_available());
    user_data.OfferService();

    EXPECT_TRUE(sut->nm_interface_available());
    EXPECT_THAT(user_data.data, ElementsAre(0x80, 0, 0));
    EXPECT_THAT(lines(), Contains("com offer ximo::ap::statemanager::StateManagementComAliveInterface radio"));
}

TEST_F(Services_in_one_process, What_an_application_requests_reaches_network_management) {
    find_network_management();
    ximo::ap::statemanager::proxy::StateManagementComAliveInterfaceProxy const radio(
        ara::com::ServiceHandle(ara::com::InstanceIdentifier("radio")));

    radio.RequestComAlive({1}, 1).get();

    ASSERT_FALSE(network_state.requested.empty());
    EXPECT_EQ(network_state.requested.back().front() & 1, 1);
    EXPECT_TRUE(sut->apps_keep_com_alive());
}

TEST_F(Services_in_one_process, The_networks_state_reaches_the_daemon_also_when_it_was_set_before) {
    network_state.NetworkState.Update({0, 0, 0, 0});
    find_network_management();
    EXPECT_THAT(lines(), Contains("log info DFLT Ecu state based on NM activity: ready sleep"));
    network_state.NetworkState.Update({0, 0, 0, 0});

    EXPECT_TRUE(sut->ecu_in_sleep_mode());
}

TEST_F(Services_in_one_process, A_call_to_what_was_withdrawn_fails) {
    ximo::ap::statemanager::proxy::StateManagementAliveInterfaceProxy const door(
        ara::com::ServiceHandle(ara::com::InstanceIdentifier("door")));
    EXPECT_THROW(door.RequestAlive().get(), tarq::com::Service_not_available_exception);
    find_network_management();
    door.RequestAlive().get();
    EXPECT_TRUE(sut->apps_keep_ecu_alive());
    sut->deinit();

    EXPECT_THROW(door.RequestAlive().get(), tarq::com::Service_not_available_exception);
}

// Here a message is told at once.
TEST(A_state_in_one_process, Sets_the_flag_of_the_fast_shutdown_before_it_tells_why) {
    using ximo::ap::statemanager::states::State_interface;
    static std::vector<bool> flags;
    told::listen([](told::Line const& line) {
        if (line.what == "verbose DFLT Transition from PreparedSD to Shutting Down") {
            flags.push_back(State_interface::get_forced_shutdown_flag());
        }
    });
    ximo::ap::statemanager::states::PreparedSD_state sut(nullptr);
    sut.check_transition(ximo::ap::statemanager::virtio::Virtio_command::shutdown);
    EXPECT_THAT(flags, ElementsAre(true));
}

}  // namespace
