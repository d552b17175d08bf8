// Replies that carry the result of another method than the one that was called.

#include "ara/com/binding.h"
#include "network_state_interface.h"
#include "tarq/com/exception.h"
#include "tarq/udpnm/interface/network_state_interface_proxy.h"
#include "tarq/udpnm/interface/user_data_interface_proxy.h"
#include "user_data_interface.h"
#include "ximo/ap/statemanager/dsa_interface_proxy.h"
#include "ximo/ap/statemanager/state_management_alive_interface_proxy.h"
#include "ximo/ap/statemanager/state_management_com_alive_interface_proxy.h"
#include "ximo/ap/statemanager/state_management_cwu_interface_proxy.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include <gtest/gtest.h>

namespace {

namespace ap_proxy = ximo::ap::statemanager::proxy;
namespace udpnm_proxy = tarq::udpnm::interface::proxy;

constexpr std::int32_t k_other = 7;  // no interface has so many methods

/// Answers every call with a reply of these bytes.
class Answering_connection : public ara::com::Connection {
 public:
    explicit Answering_connection(std::vector<std::byte> reply) : reply_(std::move(reply)) {}
    void call(void* /*request*/, std::unique_ptr<ara::com::Pending_reply> pending) override {
        pending->succeed(reply_.data());
    }
    std::unique_ptr<ara::com::Subscription> subscribe(ara::com::Event_type const& /*event*/,
                                                      ara::com::Sample_handler /*handler*/) override {
        return nullptr;
    }

 private:
    std::vector<std::byte> const reply_;
};

/// Connects to instances that answer every call with a number for the method, and one for the kind of its result.
class Answering_binding : public ara::com::Binding {
 public:
    std::int32_t method{k_other};
    std::size_t kind_at{0};  ///< 0 for nowhere
    std::int32_t kind{k_other};

    std::shared_ptr<ara::com::Connection> connect(ara::com::Service_type const& type,
                                                  ara::com::ServiceHandle const& /*handle*/) override {
        std::vector<std::byte> reply(type.reply.size);
        std::memcpy(&reply[type.reply_union], &method, sizeof method);
        if (kind_at != 0) {
            std::memcpy(&reply[kind_at], &kind, sizeof kind);
        }
        return std::make_shared<Answering_connection>(std::move(reply));
    }
    std::unique_ptr<ara::com::Event_source> offer_event(ara::com::Event_type const& /*event*/,
                                                        ara::com::InstanceIdentifier const& /*instance*/) override {
        return nullptr;
    }
    std::unique_ptr<ara::com::Offer> offer(ara::com::Service_type const& /*type*/,
                                           ara::com::InstanceIdentifier const& /*instance*/,
                                           ara::com::Request_handler /*handler*/) override {
        return nullptr;
    }
    std::shared_ptr<ara::com::Lookup> find(ara::com::Service_type const& /*type*/,
                                           ara::com::InstanceSpecifier const& /*wanted*/,
                                           ara::com::FindServiceHandler /*handler*/) override {
        return nullptr;
    }
};

class Result_of_another_method : public testing::Test {
 protected:
    ~Result_of_another_method() override { ara::com::use_binding(previous); }

    template <class Proxy>
    static Proxy client() {
        return Proxy(ara::com::ServiceHandle("", ara::com::InstanceIdentifier("1"), ""));
    }

    template <class Value>
    static void expect_failure(ximo::com::Future<Value> answer) {
        try {
            answer.get();
            ADD_FAILURE() << "it was taken for an answer";
        } catch (tarq::com::Infrastructure_exception const& error) {
            EXPECT_STREQ(error.what(), "The reply carries the result of another method");
        }
    }

    std::shared_ptr<Answering_binding> binding{std::make_shared<Answering_binding>()};
    std::shared_ptr<ara::com::Binding> previous{ara::com::use_binding(binding)};
};

TEST_F(Result_of_another_method, Fails_every_call_of_an_application) {
    expect_failure(client<ap_proxy::StateManagementAliveInterfaceProxy>().RequestAlive());
    expect_failure(client<ap_proxy::StateManagementAliveInterfaceProxy>().ReleaseAlive());
    expect_failure(client<ap_proxy::StateManagementComAliveInterfaceProxy>().RequestComAlive({}, 0));
    expect_failure(client<ap_proxy::StateManagementComAliveInterfaceProxy>().ReleaseComAlive({}));
    expect_failure(client<ap_proxy::StateManagementCWUInterfaceProxy>().RequestCarWakeUp(0));
    expect_failure(client<ap_proxy::StateManagementCWUInterfaceProxy>().ReleaseCarWakeUp());
    expect_failure(client<ap_proxy::DSAInterfaceProxy>().RequestRestart(2));
}

TEST_F(Result_of_another_method, Fails_every_call_to_network_management) {
    expect_failure(client<udpnm_proxy::NetworkStateInterfaceProxy>().RequestNetwork({}));
    expect_failure(client<udpnm_proxy::NetworkStateInterfaceProxy>().ReleaseNetwork({}));
    expect_failure(client<udpnm_proxy::NetworkStateInterfaceProxy>().NetworkState.Get());
    expect_failure(client<udpnm_proxy::UserDataInterfaceProxy>().GetUserData());
    expect_failure(client<udpnm_proxy::UserDataInterfaceProxy>().SetUserData({}));
}

TEST_F(Result_of_another_method, Is_also_one_of_another_kind) {
    binding->method = 2;
    binding->kind_at = offsetof(tarq_udpnm_interface_NetworkStateInterface_Reply, data._u.getNetworkState._d);
    expect_failure(client<udpnm_proxy::NetworkStateInterfaceProxy>().NetworkState.Get());
    binding->kind = 0;
    EXPECT_TRUE(client<udpnm_proxy::NetworkStateInterfaceProxy>().NetworkState.Get().get().empty());

    binding->method = 0;
    binding->kind = k_other;
    binding->kind_at = offsetof(tarq_udpnm_interface_UserDataInterface_Reply, data._u.getUserData._d);
    expect_failure(client<udpnm_proxy::UserDataInterfaceProxy>().GetUserData());
    binding->kind = 0;
    EXPECT_TRUE(client<udpnm_proxy::UserDataInterfaceProxy>().GetUserData().get().data.empty());
}

}  // namespace
