#include "client_fixture.h"
#include "engine_hooks.h"
#include "own_client.h"
#include "peer_numbers.h"
#include "peer_services.h"
#include "subscribed.h"
#include "tarq/udpnm/interface/network_state_interface_type.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <future>
#include <iterator>
#include <optional>
#include <set>
#include <string>
#include <thread>

namespace com_test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSubsetOf;
using testing::Not;

using Threads = std::set<std::string>;

Threads threads() {
    Threads numbers;
    for (auto const& entry : std::filesystem::directory_iterator("/proc/self/task")) {
        numbers.insert(entry.path().filename());
    }
    return numbers;
}

/// The threads that were not there before. One that was joined can be seen for a moment more, so this waits until there
/// are none.
Threads left_since(Threads const& before) {
    auto const deadline = std::chrono::steady_clock::now() + k_patience;
    for (;;) {
        Threads left;
        auto const now = threads();
        std::set_difference(now.begin(), now.end(), before.begin(), before.end(), std::inserter(left, left.end()));
        if (left.empty() || std::chrono::steady_clock::now() > deadline) {
            return left;
        }
        std::this_thread::yield();
    }
}

/// The runtime's end.
class Shutdown : public Own_client {};

TEST_F(Shutdown, A_runtime_that_is_not_used_starts_no_thread) {
    end();
    auto const before = threads();
    start();
    EXPECT_EQ(threads(), before);
}

TEST_F(Shutdown, All_threads_end_with_the_runtime) {
    // ThreadSanitizer starts a thread of its own, which stays, with the first one that the process starts.
    std::thread([] {}).join();
    auto const before = threads();
    Com_alive service("app", tell_, gate_);
    service.OfferService();
    Com_alive_proxy proxy(found<Com_alive_proxy>("app"));
    EXPECT_TRUE(succeeds(proxy.ReleaseComAlive({})));
    EXPECT_THAT(threads(), Not(IsSubsetOf(before)));
    end();
    EXPECT_THAT(left_since(before), IsEmpty());
}

TEST_F(Shutdown, What_outlives_the_runtime_has_no_effect_and_no_fault) {
    Network service("app", tell_);
    service.OfferService();
    auto const lookup = Network_proxy::StartFindService([](auto const&) {}, ara::com::InstanceSpecifier("*"));
    Network_proxy proxy(found<Network_proxy>("app"));
    proxy.NetworkState.Subscribe(1);
    EXPECT_TRUE(succeeds(proxy.RequestNetwork({1})));
    end();
    EXPECT_THROW(proxy.RequestNetwork({1}).get(), tarq::com::Infrastructure_exception);
    EXPECT_THROW(service.NetworkState.Update({1}), tarq::com::Infrastructure_exception);
    Network_proxy::StopFindService(lookup);
    proxy.NetworkState.Unsubscribe();
    service.StopOfferService();
}

TEST_F(Shutdown, A_pending_call_fails) {
    Com_alive service("app", tell_, gate_);
    service.OfferService();
    Com_alive_proxy proxy(found<Com_alive_proxy>("app"));
    auto future = proxy.RequestComAlive({}, k_wait);
    told_.await_count(1);
    // The runtime waits for the handler.
    std::thread ending([this] { end(); });
    EXPECT_THROW(future.get(), tarq::com::Infrastructure_exception);
    open_.set_value();
    ending.join();
}

TEST_F(Shutdown, A_runtime_can_be_started_again) {
    for (int round = 0; round < 3; ++round) {
        Com_alive service("app", tell_, gate_);
        service.OfferService();
        Com_alive_proxy proxy(found<Com_alive_proxy>("app"));
        EXPECT_TRUE(succeeds(proxy.ReleaseComAlive({})));
        end();
        start();
    }
}

TEST_F(Shutdown, Nothing_can_be_used_without_a_runtime) {
    end();
    Network service("app", tell_);
    EXPECT_THROW(service.OfferService(), tarq::com::Infrastructure_exception);
    EXPECT_THROW(Network_proxy::StartFindService([](auto const&) {}, ara::com::InstanceSpecifier("*")),
                 tarq::com::Infrastructure_exception);
}

TEST_F(Shutdown, Ends_all_whoever_holds_the_binding) {
    // A lookup that finds something makes a proxy with a reference of its own, which here is the last one.
    Network_proxy::StartFindService(
        [this](auto const& /*handles*/) {
            auto const held = ara::com::binding();
            told_.add({});
            gate_.wait();
            auto const deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(200);
            while (held.use_count() > 1 && std::chrono::steady_clock::now() < deadline) {
                std::this_thread::yield();
            }
        },
        ara::com::InstanceSpecifier("*"));
    told_.await_count(1);
    auto ending = std::async(std::launch::async, [this] { end(); });
    EXPECT_EQ(ending.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    open_.set_value();
    ending.get();
}

TEST_F(Shutdown, Waits_for_those_who_are_just_beginning_to_use_it) {
    Network service("app", tell_);
    service.OfferService();
    auto const handle = found<Network_proxy>("app");
    std::future<void> ending;
    std::function<void()> const end_meanwhile = [&] {
        ending = std::async(std::launch::async, [this] { end(); });
        EXPECT_EQ(ending.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
    };
    engine_hooks().before_writer = &end_meanwhile;
    Network_proxy proxy(handle);
    ending.get();
    auto const begin = std::chrono::steady_clock::now();
    EXPECT_THROW(proxy.RequestNetwork({1}).get(), tarq::com::Infrastructure_exception);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(1000)) << "it has waited";
}

TEST_F(Shutdown, A_binding_that_is_held_can_do_nothing_more) {
    auto const held = ara::com::binding();
    end();
    EXPECT_THROW(held->find(tarq::udpnm::interface::k_network_state_interface, ara::com::InstanceSpecifier("*"),
                            [](auto const& /*handles*/) {}),
                 tarq::com::Infrastructure_exception);
}

TEST_F(Shutdown, The_runtime_ends_with_the_last_of_several_objects) {
    User_data service("app");
    service.OfferService();
    auto second = std::make_optional<tarq::com::runtime::Component_singleton>(false, "");
    User_data_proxy proxy(found<User_data_proxy>("app"));
    EXPECT_TRUE(succeeds(proxy.GetUserData()));
    second.reset();
    EXPECT_TRUE(succeeds(proxy.GetUserData()));
    second.emplace(false, "");
    end();
    EXPECT_TRUE(succeeds(proxy.GetUserData()));
    second.reset();
    EXPECT_THROW(proxy.GetUserData().get(), tarq::com::Infrastructure_exception);
}

// Nothing is expected but that the calls end with the runtime: a fault in it crashes, hangs or is a sanitizer's
// finding.
TEST_F(Shutdown, Calls_may_go_on_until_the_end) {
    User_data service("app");
    service.OfferService();
    User_data_proxy proxy(found<User_data_proxy>("app"));
    std::atomic<bool> called{false};
    std::thread caller([&] {
        try {
            for (;;) {
                proxy.SetUserData({1}).get();
                called = true;
            }
        } catch (tarq::com::Infrastructure_exception const&) {
        }
    });
    while (!called) {
        std::this_thread::yield();
    }
    end();
    caller.join();
}

TEST_F(Shutdown, The_end_of_an_offer_waits_for_the_handler_that_runs) {
    Com_alive service("app", tell_, gate_);
    service.OfferService();
    Com_alive_proxy proxy(found<Com_alive_proxy>("app"));
    auto future = proxy.RequestComAlive({}, k_wait);
    told_.await_count(1);
    std::atomic<bool> stopped{false};
    std::thread stopping([&] {
        service.StopOfferService();
        stopped = true;
    });
    EXPECT_EQ(error_of(std::move(future)), "Service not available exception");
    EXPECT_FALSE(stopped);
    open_.set_value();
    stopping.join();
}

/// Withdraws itself when it is called.
class Ends_itself : public User_data {
 public:
    using User_data::User_data;
    ximo::com::Future<void> SetUserData(Bytes const& data) override {
        StopOfferService();
        return User_data::SetUserData(data);
    }
};

TEST_F(Shutdown, A_handler_may_end_its_own_offer) {
    Ends_itself service("app");
    service.OfferService();
    User_data_proxy proxy(found<User_data_proxy>("app"));
    EXPECT_EQ(error_of(proxy.SetUserData({1})), "Service not available exception");
    service.OfferService();
    EXPECT_TRUE(succeeds(User_data_proxy(found<User_data_proxy>("app")).GetUserData()));
}

TEST_F(Shutdown, An_instance_can_be_offered_once_in_a_process) {
    User_data first("app");
    User_data second("app");
    first.OfferService();
    first.OfferService();
    EXPECT_THROW(second.OfferService(), tarq::com::Infrastructure_exception);
    EXPECT_TRUE(succeeds(User_data_proxy(found<User_data_proxy>("app")).GetUserData()));
    first.StopOfferService();
    first.StopOfferService();
    second.OfferService();
    EXPECT_TRUE(succeeds(User_data_proxy(found<User_data_proxy>("app")).GetUserData()));
}

TEST_F(Shutdown, A_field_whose_service_could_not_be_offered_sends_nothing) {
    Network first("app", tell_);
    Network second("app", tell_);
    first.OfferService();
    first.NetworkState.Update({1});
    EXPECT_THROW(second.OfferService(), tarq::com::Infrastructure_exception);
    second.NetworkState.Update({2});
    Network_proxy proxy(found<Network_proxy>("app"));
    Seen<Bytes> seen;
    proxy.NetworkState.SetReceiveHandler([&] {
        proxy.NetworkState.Update();
        seen.add(*proxy.NetworkState.GetCachedSamples().back());
    });
    proxy.NetworkState.Subscribe(1);
    seen.await_count(1);
    first.NetworkState.Update({3});
    EXPECT_THAT(seen.await_count(2), ElementsAre(Bytes{1}, Bytes{3}));
    proxy.NetworkState.Unsubscribe();
}

}  // namespace
}  // namespace com_test
