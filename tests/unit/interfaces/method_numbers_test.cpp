// The numbers of the methods, which clients of other makes put into their requests, and what else they see of types.

#include "completed.h"
#include "dsa_interface.h"
#include "network_state_interface.h"
#include "state_management_alive_interface.h"
#include "state_management_com_alive_interface.h"
#include "state_management_cwu_interface.h"
#include "support/fake_binding.h"
#include "tarq/udpnm/interface/network_state_interface_skeleton.h"
#include "tarq/udpnm/interface/network_state_interface_type.h"
#include "tarq/udpnm/interface/user_data_interface_skeleton.h"
#include "tarq/udpnm/interface/user_data_interface_type.h"
#include "user_data_interface.h"
#include "ximo/ap/statemanager/dsa_interface_skeleton.h"
#include "ximo/ap/statemanager/dsa_interface_type.h"
#include "ximo/ap/statemanager/state_management_alive_interface_skeleton.h"
#include "ximo/ap/statemanager/state_management_alive_interface_type.h"
#include "ximo/ap/statemanager/state_management_com_alive_interface_skeleton.h"
#include "ximo/ap/statemanager/state_management_com_alive_interface_type.h"
#include "ximo/ap/statemanager/state_management_cwu_interface_skeleton.h"
#include "ximo/ap/statemanager/state_management_cwu_interface_type.h"

#include <exception>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using Bytes = std::vector<std::uint8_t>;
namespace ap = ximo::ap::statemanager;
namespace udpnm = tarq::udpnm::interface;

constexpr auto k_event = ara::com::MethodCallProcessingMode::kEvent;

ara::com::InstanceIdentifier instance() {
    return ara::com::InstanceIdentifier("1");
}

/// The methods that were called.
struct Calls {
    ximo::com::Future<void> note(char const* method) { return called.emplace_back(method), completed(); }
    std::vector<std::string> called;
};

struct Alive : ap::skeleton::StateManagementAliveInterfaceSkeleton, Calls {
    Alive() : StateManagementAliveInterfaceSkeleton(instance(), k_event) {}
    ximo::com::Future<void> ReleaseAlive() override { return note("release"); }
    ximo::com::Future<void> RequestAlive() override { return note("request"); }
};

struct Com_alive : ap::skeleton::StateManagementComAliveInterfaceSkeleton, Calls {
    Com_alive() : StateManagementComAliveInterfaceSkeleton(instance(), k_event) {}
    ximo::com::Future<void> ReleaseComAlive(Bytes const& /*bits*/) override { return note("release"); }
    ximo::com::Future<void> RequestComAlive(Bytes const& /*bits*/, std::uint8_t /*number*/) override {
        return note("request");
    }
};

struct Car_wake_up : ap::skeleton::StateManagementCWUInterfaceSkeleton, Calls {
    Car_wake_up() : StateManagementCWUInterfaceSkeleton(instance(), k_event) {}
    ximo::com::Future<void> ReleaseCarWakeUp() override { return note("release"); }
    ximo::com::Future<void> RequestCarWakeUp(std::uint8_t /*number*/) override { return note("request"); }
};

struct Restart : ap::skeleton::DSAInterfaceSkeleton, Calls {
    Restart() : DSAInterfaceSkeleton(instance(), k_event) {}
    ximo::com::Future<void> RequestRestart(std::uint8_t /*type*/) override { return note("restart"); }
};

struct Network_state : udpnm::skeleton::NetworkStateInterfaceSkeleton, Calls {
    Network_state() : NetworkStateInterfaceSkeleton(instance(), k_event) {}
    ximo::com::Future<void> RequestNetwork(Bytes const& /*bits*/) override { return note("request"); }
    ximo::com::Future<void> ReleaseNetwork(Bytes const& /*bits*/) override { return note("release"); }
};

struct User_data : udpnm::skeleton::UserDataInterfaceSkeleton, Calls {
    User_data() : UserDataInterfaceSkeleton(instance(), k_event) {}
    ximo::com::Future<udpnm::GetUserData::Output> GetUserData() override {
        note("get");
        ximo::com::Promise<udpnm::GetUserData::Output> promise;
        promise.set_value({});
        return promise.get_future();
    }
    ximo::com::Future<void> SetUserData(Bytes const& /*data*/) override { return note("set"); }
};

/// Tells whether a call succeeded.
class Outcome : public ara::com::Pending_reply {
 public:
    explicit Outcome(bool& succeeded) : succeeded_(succeeded) {}
    void succeed(void const* /*reply*/) override { succeeded_ = true; }
    void fail(std::exception_ptr /*cause*/) override { succeeded_ = false; }

 private:
    bool& succeeded_;
};

/// Calls by number, without arguments; false when there is no such method.
template <class Request>
bool calls(ara::com::Service_type const& type, std::int32_t method) {
    Request request{};
    request.data._d = method;
    bool succeeded = false;
    ara::com::binding()
        ->connect(type, ara::com::ServiceHandle(type.name, instance(), ""))
        ->call(&request, std::make_unique<Outcome>(succeeded));
    return succeeded;
}

/// What is called by the numbers 0 and 1.
template <class Request, class Service>
std::vector<std::string> first_two(ara::com::Service_type const& type) {
    test_support::Fake_binding binding;
    Service service;
    service.OfferService();
    calls<Request>(type, 0);
    calls<Request>(type, 1);
    return service.called;
}

TEST(Method_numbers, Follow_the_order_of_the_methods_of_each_service) {
    EXPECT_THAT((first_two<ximo_ap_statemanager_StateManagementAliveInterface_Request, Alive>(
                    ap::k_state_management_alive_interface)),
                ElementsAre("release", "request"));
    EXPECT_THAT((first_two<ximo_ap_statemanager_StateManagementComAliveInterface_Request, Com_alive>(
                    ap::k_state_management_com_alive_interface)),
                ElementsAre("release", "request"));
    EXPECT_THAT((first_two<ximo_ap_statemanager_StateManagementCWUInterface_Request, Car_wake_up>(
                    ap::k_state_management_cwu_interface)),
                ElementsAre("release", "request"));
    EXPECT_THAT((first_two<ximo_ap_statemanager_DSAInterface_Request, Restart>(ap::k_dsa_interface)),
                ElementsAre("restart"));
    EXPECT_THAT((first_two<tarq_udpnm_interface_NetworkStateInterface_Request, Network_state>(
                    udpnm::k_network_state_interface)),
                ElementsAre("request", "release"));
    EXPECT_THAT((first_two<tarq_udpnm_interface_UserDataInterface_Request, User_data>(udpnm::k_user_data_interface)),
                ElementsAre("get", "set"));
}

TEST(Method_numbers, Beyond_the_last_method_call_nothing) {
    test_support::Fake_binding binding;
    Alive alive;
    Restart restart;
    alive.OfferService();
    restart.OfferService();

    EXPECT_TRUE(
        calls<ximo_ap_statemanager_StateManagementAliveInterface_Request>(ap::k_state_management_alive_interface, 1));
    EXPECT_FALSE(
        calls<ximo_ap_statemanager_StateManagementAliveInterface_Request>(ap::k_state_management_alive_interface, 2));
    EXPECT_FALSE(calls<ximo_ap_statemanager_DSAInterface_Request>(ap::k_dsa_interface, 1));

    EXPECT_THAT(alive.called, ElementsAre("request"));
    EXPECT_THAT(restart.called, testing::IsEmpty());
}

// The engine looks through the endpoints of others for the sake of it, also through those that it has just freed.
TEST(Types, Have_no_type_information) {
    auto const has_some = [](ara::com::Topic_type const& type) {
        return (static_cast<dds_topic_descriptor_t const*>(type.descriptor)->m_flagset & DDS_TOPIC_XTYPES_METADATA) !=
               0;
    };
    for (auto const* service : {&ap::k_state_management_alive_interface, &ap::k_state_management_com_alive_interface,
                                &ap::k_state_management_cwu_interface, &ap::k_dsa_interface,
                                &udpnm::k_network_state_interface, &udpnm::k_user_data_interface}) {
        EXPECT_FALSE(has_some(service->request)) << service->name;
        EXPECT_FALSE(has_some(service->reply)) << service->name;
    }
    EXPECT_FALSE(has_some(udpnm::k_network_state.sample));
    EXPECT_FALSE(has_some(udpnm::k_user_data_changed.sample));
}

}  // namespace
