// Ends of offers, subscriptions and lookups, and the handlers that they wait for.

#include "ara/com/dds/calls/call_path.h"
#include "engine_hooks.h"
#include "network_state_interface.h"
#include "own_client.h"
#include "peer_numbers.h"
#include "subscribed.h"
#include "tarq/udpnm/interface/network_state_interface_type.h"

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <thread>

namespace com_test {
namespace {

/// An end that is asked for twice, while the handler that both wait for runs.
class Ends : public Own_client {
 protected:
    // Neither of two calls returns before the handler does.
    template <class End>
    void expect_both_wait(End const& end) {
        auto first = std::async(std::launch::async, end);
        auto second = std::async(std::launch::async, end);
        EXPECT_EQ(first.wait_for(k_short_while), std::future_status::timeout);
        EXPECT_EQ(second.wait_for(k_short_while), std::future_status::timeout);
        open_.set_value();
        first.get();
        second.get();
    }

    static constexpr std::chrono::milliseconds k_short_while{100};
    Tell tell_and_wait_ = [this](auto const& event) {
        told_.add(event);
        gate_.wait();
    };
};

TEST_F(Ends, Of_an_offer_wait_both) {
    Network service("app", tell_and_wait_);
    service.OfferService();
    Network_proxy proxy(found<Network_proxy>("app"));
    auto const future = proxy.RequestNetwork({});
    told_.await_count(1);
    expect_both_wait([&] { service.StopOfferService(); });
}

TEST_F(Ends, Of_an_offer_wait_both_after_the_handler_ended_it_itself) {
    Network* service = nullptr;
    Network ended_by_handler("app", [&](auto const& event) {
        service->StopOfferService();
        tell_and_wait_(event);
    });
    service = &ended_by_handler;
    service->OfferService();
    Network_proxy proxy(found<Network_proxy>("app"));
    auto const future = proxy.RequestNetwork({});
    told_.await_count(1);
    expect_both_wait([&] { service->StopOfferService(); });
}

TEST_F(Ends, Of_a_subscription_wait_both) {
    Network service("app", tell_);
    service.OfferService();
    Network_proxy proxy(found<Network_proxy>("app"));
    proxy.NetworkState.SetReceiveHandler([&] { tell_and_wait_({}); });
    proxy.NetworkState.Subscribe(1);
    service.NetworkState.Update({1});
    told_.await_count(1);
    expect_both_wait([&] { proxy.NetworkState.Unsubscribe(); });
}

TEST_F(Ends, Of_a_subscription_wait_both_after_the_handler_ended_it_itself) {
    Network service("app", tell_);
    service.OfferService();
    Network_proxy proxy(found<Network_proxy>("app"));
    proxy.NetworkState.SetReceiveHandler([&] {
        proxy.NetworkState.Unsubscribe();
        tell_and_wait_({});
    });
    proxy.NetworkState.Subscribe(1);
    service.NetworkState.Update({1});
    told_.await_count(1);
    expect_both_wait([&] { proxy.NetworkState.Unsubscribe(); });
}

TEST_F(Ends, Of_a_lookup_wait_both) {
    std::promise<ara::com::FindServiceHandle> promise;
    auto const handle = promise.get_future().share();
    promise.set_value(Network_proxy::StartFindService(
        [this, handle](auto const& /*handles*/) {
            Network_proxy::StopFindService(handle.get());
            tell_and_wait_({});
        },
        ara::com::InstanceSpecifier("*")));
    told_.await_count(1);
    expect_both_wait([&] { Network_proxy::StopFindService(handle.get()); });
}

TEST_F(Ends, That_wait_leave_a_newer_offer_alone) {
    Network service("app", tell_and_wait_);
    service.NetworkState.Update({1});
    service.OfferService();
    Network_proxy proxy(found<Network_proxy>("app"));
    Subscribed subscribed(proxy.NetworkState);
    subscribed.await_last({1});
    auto future = proxy.RequestNetwork({});
    told_.await_count(1);
    std::thread waiting([&] { service.StopOfferService(); });
    EXPECT_EQ(error_of(std::move(future)), "Service not available exception");
    service.OfferService();
    open_.set_value();
    waiting.join();
    service.NetworkState.Update({2});
    EXPECT_EQ(subscribed.await_last({2}).back(), Bytes{2});
    service.StopOfferService();
}

TEST_F(Ends, Of_a_field_keep_its_getter_until_the_receive_handler_has_ended) {
    Network service("app", tell_);
    service.OfferService();
    auto const connection =
        ara::com::binding()->connect(tarq::udpnm::interface::k_network_state_interface, found<Network_proxy>("app"));
    auto held = std::make_shared<int>(0);
    std::weak_ptr<int> const getter = held;
    auto sut = std::make_unique<ara::com::Proxy_field<int>>(
        connection, tarq::udpnm::interface::k_network_state, [](void const*) { return 0; },
        [held = std::move(held)] { return ximo::com::Future<int>(); });
    bool gone = false;
    sut->SetReceiveHandler([&] {
        told_.add({});
        auto const deadline = std::chrono::steady_clock::now() + 2 * k_short_while;
        while (!(gone = getter.expired()) && std::chrono::steady_clock::now() < deadline) {
            std::this_thread::yield();
        }
    });
    sut->Subscribe(1);
    service.NetworkState.Update({1});
    told_.await_count(1);
    sut.reset();
    EXPECT_FALSE(gone);
    EXPECT_TRUE(getter.expired());
}

/// A client that calls as soon as somebody listens, whether or not that is told of as an offer.
class Hasty_client {
 public:
    void call() { path_.send(&request_, 1); }

 private:
    tarq_udpnm_interface_NetworkStateInterface_Request request_{};
    ara::com::dds::Participant participant_;
    ara::com::dds::Call_path const path_{participant_, tarq::udpnm::interface::k_network_state_interface, "app",
                                         [](auto&&...) {}, [] {}};
};

TEST_F(Ends, Of_an_offer_that_fails_wait_for_no_handler_since_none_begins) {
    Hasty_client client;
    Network* service = nullptr;
    Network failing("app", [&](auto const& event) {
        told_.add(event);
        service->StopOfferService();
    });
    service = &failing;
    std::function<void()> const call = [&] {
        client.call();
        std::this_thread::sleep_for(k_short_while);
    };
    engine_hooks().instead_of_offer = &call;
    auto const offered = std::async(
        std::launch::async, [&] { EXPECT_THROW(service->OfferService(), tarq::com::Infrastructure_exception); });
    ASSERT_EQ(offered.wait_for(k_patience), std::future_status::ready);
    EXPECT_THAT(told_.now(), testing::IsEmpty());
    service->OfferService();
    EXPECT_TRUE(succeeds(Network_proxy(found<Network_proxy>("app")).NetworkState.Get()));
}

}  // namespace
}  // namespace com_test
