#ifndef TESTS_COMPONENT_COM_PEER_SERVICES_H
#define TESTS_COMPONENT_COM_PEER_SERVICES_H

#include "peer_numbers.h"
#include "tarq/udpnm/interface/network_state_interface_skeleton.h"
#include "tarq/udpnm/interface/user_data_interface_skeleton.h"
#include "ximo/ap/statemanager/state_management_com_alive_interface_skeleton.h"

#include <cstdint>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

/// What the peer of the tests offers under each instance's name: a COM-alive, a network state and a user data service.
namespace com_test {

using Bytes = std::vector<std::uint8_t>;
using Tell = std::function<void(nlohmann::json const& event)>;

/// One line on standard output. Any thread.
void print(nlohmann::json const& message);

class Com_alive : public ximo::ap::statemanager::skeleton::StateManagementComAliveInterfaceSkeleton {
 public:
    Com_alive(std::string const& name, Tell tell, std::shared_future<void> gate);
    ~Com_alive() override { StopOfferService(); }

    ximo::com::Future<void> ReleaseComAlive(Bytes const& cab_bits) override;
    ximo::com::Future<void> RequestComAlive(Bytes const& cab_bits, std::uint8_t ac_number) override;

 private:
    std::string const name_;
    Tell const tell_;
    std::shared_future<void> const gate_;
};

class Network : public tarq::udpnm::interface::skeleton::NetworkStateInterfaceSkeleton {
 public:
    Network(std::string const& name, Tell tell, std::shared_future<void> gate = {});
    ~Network() override { StopOfferService(); }

    ximo::com::Future<void> RequestNetwork(Bytes const& bits) override;
    ximo::com::Future<void> ReleaseNetwork(Bytes const& bits) override;

 private:
    std::string const name_;
    Tell const tell_;
    std::shared_future<void> const gate_;
};

/// Gives back what was set.
class User_data : public tarq::udpnm::interface::skeleton::UserDataInterfaceSkeleton {
 public:
    explicit User_data(std::string const& name);
    ~User_data() override { StopOfferService(); }

    ximo::com::Future<tarq::udpnm::interface::GetUserData::Output> GetUserData() override;
    ximo::com::Future<void> SetUserData(Bytes const& data) override;

 private:
    Bytes data_;
};

class Peer_services {
 public:
    explicit Peer_services(Tell tell) : tell_(std::move(tell)) {}

    void offer(std::string const& name);
    void withdraw(std::string const& name) { offered_.erase(name); }
    Network& network(std::string const& name) { return *offered_.at(name).network; }
    User_data& user_data(std::string const& name) { return *offered_.at(name).user_data; }

    /// Handlers that wait go on, now and from now on.
    void let_go();

 private:
    struct Services {
        std::unique_ptr<Network> network;
        std::unique_ptr<User_data> user_data;
        std::unique_ptr<Com_alive> com_alive;
    };

    Tell const tell_;
    std::promise<void> open_;
    std::shared_future<void> const gate_{open_.get_future()};
    bool is_open_{false};
    std::map<std::string, Services> offered_;
};

}  // namespace com_test

#endif
