#include "completed.h"
#include "support/fake_binding.h"
#include "tarq/udpnm/interface/network_state_interface_proxy.h"
#include "tarq/udpnm/interface/network_state_interface_skeleton.h"

#include <stdexcept>
#include <vector>

#include <gmock/gmock.h>

namespace tarq::udpnm::interface {

namespace {

using Bytes = std::vector<std::uint8_t>;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pointee;

struct Network : skeleton::NetworkStateInterfaceSkeleton {
    Network()
        : NetworkStateInterfaceSkeleton(ara::com::InstanceIdentifier("nm"),
                                        ara::com::MethodCallProcessingMode::kEvent) {}
    ximo::com::Future<void> RequestNetwork(Bytes const& bits) override {
        return requested.push_back(bits), completed();
    }
    ximo::com::Future<void> ReleaseNetwork(Bytes const& bits) override { return released.push_back(bits), completed(); }
    std::vector<Bytes> requested;
    std::vector<Bytes> released;
};

struct Network_state : testing::Test {
    test_support::Fake_binding binding;
    Network service;
    ara::com::ServiceHandle const handle{"", ara::com::InstanceIdentifier("nm"), ""};
};

TEST_F(Network_state, Calls_carry_the_bits) {
    service.OfferService();
    proxy::NetworkStateInterfaceProxy sut(handle);

    sut.RequestNetwork({1, 2}).get();
    sut.ReleaseNetwork({3}).get();

    EXPECT_THAT(service.requested, ElementsAre(ElementsAre(1, 2)));
    EXPECT_THAT(service.released, ElementsAre(ElementsAre(3)));
}

TEST_F(Network_state, Get_answers_the_last_value) {
    service.OfferService();
    service.NetworkState.Update({9, 8});
    proxy::NetworkStateInterfaceProxy sut(handle);

    EXPECT_THAT(sut.NetworkState.Get().get(), ElementsAre(9, 8));
}

TEST_F(Network_state, Get_answers_an_empty_value_before_the_first_update) {
    service.OfferService();
    proxy::NetworkStateInterfaceProxy sut(handle);

    EXPECT_THAT(sut.NetworkState.Get().get(), IsEmpty());
}

TEST_F(Network_state, A_get_handler_answers_instead) {
    service.NetworkState.RegisterGetHandler([] {
        ximo::com::Promise<Bytes> promise;
        promise.set_value({4});
        return promise.get_future();
    });
    service.OfferService();
    proxy::NetworkStateInterfaceProxy sut(handle);

    EXPECT_THAT(sut.NetworkState.Get().get(), ElementsAre(4));
}

TEST_F(Network_state, Subscribers_get_each_value_also_an_equal_one) {
    service.OfferService();
    proxy::NetworkStateInterfaceProxy sut(handle);
    std::vector<Bytes> seen;
    sut.NetworkState.SetReceiveHandler([&] {
        sut.NetworkState.Update();
        for (auto const& sample : sut.NetworkState.GetCachedSamples()) {
            seen.push_back(*sample);
        }
    });
    sut.NetworkState.Subscribe(1);

    service.NetworkState.Update({1});
    service.NetworkState.Update({0});
    service.NetworkState.Update({0});

    EXPECT_THAT(seen, ElementsAre(ElementsAre(1), ElementsAre(0), ElementsAre(0)));
}

TEST_F(Network_state, Has_a_notifier_of_the_name_in_the_description) {
    service.OfferService();
    proxy::NetworkStateInterfaceProxy sut(handle);
    sut.NetworkState.Notify.Subscribe(1);

    service.NetworkState.Update({7});

    EXPECT_TRUE(sut.NetworkState.Notify.Update());
    EXPECT_THAT(sut.NetworkState.Notify.GetCachedSamples(), ElementsAre(Pointee(ElementsAre(7))));
}

TEST_F(Network_state, A_late_subscriber_gets_the_newest_value) {
    service.NetworkState.Update({5});
    service.OfferService();
    proxy::NetworkStateInterfaceProxy sut(handle);

    sut.NetworkState.Subscribe(1);

    EXPECT_TRUE(sut.NetworkState.Update());
    EXPECT_THAT(sut.NetworkState.GetCachedSamples(), ElementsAre(Pointee(ElementsAre(5))));
}

TEST_F(Network_state, An_update_without_new_samples_empties_the_cache) {
    service.OfferService();
    proxy::NetworkStateInterfaceProxy sut(handle);
    sut.NetworkState.Subscribe(1);
    service.NetworkState.Update({1});
    sut.NetworkState.Update();

    EXPECT_FALSE(sut.NetworkState.Update());
    EXPECT_THAT(sut.NetworkState.GetCachedSamples(), IsEmpty());
}

TEST_F(Network_state, The_cache_keeps_the_newest_samples) {
    service.OfferService();
    proxy::NetworkStateInterfaceProxy sut(handle);
    sut.NetworkState.Subscribe(2);
    service.NetworkState.Update({1});
    service.NetworkState.Update({2});
    service.NetworkState.Update({3});

    sut.NetworkState.Update();

    EXPECT_THAT(sut.NetworkState.GetCachedSamples(), ElementsAre(Pointee(ElementsAre(2)), Pointee(ElementsAre(3))));
}

TEST_F(Network_state, A_second_subscription_changes_nothing) {
    service.OfferService();
    proxy::NetworkStateInterfaceProxy sut(handle);

    sut.NetworkState.Subscribe(1);
    sut.NetworkState.Subscribe(5);

    EXPECT_EQ(binding.recorded("subscribe").size(), 1);
}

TEST_F(Network_state, After_the_subscription_ended_nothing_arrives) {
    service.OfferService();
    proxy::NetworkStateInterfaceProxy sut(handle);
    sut.NetworkState.Subscribe(1);
    sut.NetworkState.Unsubscribe();

    service.NetworkState.Update({1});

    EXPECT_FALSE(sut.NetworkState.Update());
}

}  // namespace

}  // namespace tarq::udpnm::interface
