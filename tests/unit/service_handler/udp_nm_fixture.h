#ifndef TESTS_UNIT_SERVICE_HANDLER_UDP_NM_FIXTURE_H
#define TESTS_UNIT_SERVICE_HANDLER_UDP_NM_FIXTURE_H

#include "statemanager/nm/bit_vector.h"
#include "statemanager/service_handler/nm_interface.h"
#include "support/fake_binding.h"
#include "support/log_capture.h"
#include "tarq/com/exception.h"
#include "tarq/udpnm/interface/network_state_interface_skeleton.h"
#include "tarq/udpnm/interface/user_data_interface_skeleton.h"

#include <exception>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace ximo::ap::statemanager {

using ara::log::LogLevel;
using test_support::logged;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

inline std::string const k_network_state = "tarq::udpnm::interface::NetworkStateInterface";
inline std::string const k_user_data = "tarq::udpnm::interface::UserDataInterface";

inline ximo::com::Future<void> ready() {
    ximo::com::Promise<void> promise;
    promise.set_value();
    return promise.get_future();
}

/// The network state service of one network node; notes what it is asked for.
class Network_state_service : public tarq::udpnm::interface::skeleton::NetworkStateInterfaceSkeleton {
 public:
    explicit Network_state_service(char const* instance)
        : NetworkStateInterfaceSkeleton(ara::com::InstanceIdentifier(instance),
                                        ara::com::MethodCallProcessingMode::kEvent) {}
    ~Network_state_service() override { StopOfferService(); }
    ximo::com::Future<void> RequestNetwork(std::vector<std::uint8_t> const& bits) override {
        asked.push_back("request " + bitvector2str(bits));
        return ready();
    }
    ximo::com::Future<void> ReleaseNetwork(std::vector<std::uint8_t> const& bits) override {
        asked.push_back("release " + bitvector2str(bits));
        return ready();
    }

    std::vector<std::string> asked;
};

/// The user data service of one network node; notes what it is given.
class User_data_service : public tarq::udpnm::interface::skeleton::UserDataInterfaceSkeleton {
 public:
    explicit User_data_service(char const* instance)
        : UserDataInterfaceSkeleton(ara::com::InstanceIdentifier(instance),
                                    ara::com::MethodCallProcessingMode::kEvent) {}
    ~User_data_service() override { StopOfferService(); }
    ximo::com::Future<tarq::udpnm::interface::GetUserData::Output> GetUserData() override {
        ximo::com::Promise<tarq::udpnm::interface::GetUserData::Output> promise;
        promise.set_value({});
        return promise.get_future();
    }
    ximo::com::Future<void> SetUserData(std::vector<std::uint8_t> const& data) override {
        given.push_back(bitvector2str(data));
        return ready();
    }

    std::vector<std::string> given;
};

/// The client of UDP network management, and network nodes on a binding inside the process.
class Udp_nm_test : public testing::Test {
 protected:
    void search() {
        sut->start_find_services([this] { ++announced; });
    }

    test_support::Fake_binding binding;
    Network_state_service network_state{"node"};
    User_data_service user_data{"node"};
    test_support::Log_capture log;
    int announced{0};
    std::unique_ptr<Nm_interface> sut{std::make_unique<Nm_interface>()};
};

}  // namespace ximo::ap::statemanager

#endif
