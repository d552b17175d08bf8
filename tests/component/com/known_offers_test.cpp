// Who wants to know of offers, and is forgotten again; whose processes are watched.

#include "ara/com/dds/offers/known_offers.h"

#include "ara/com/dds/engine/engine.h"
#include "ara/com/dds/entities/endpoints.h"
#include "ara/com/dds/offers/offer_types.h"
#include "ara/com/dds/offers/process_space.h"
#include "bench/process/child_process.h"
#include "client_fixture.h"
#include "service_offer.h"
#include "tarq/udpnm/interface/network_state_interface_type.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <future>
#include <memory>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace com_test {
namespace {

using namespace ara::com::dds;  // NOLINT(google-build-using-namespace): what is tested is a part of it

std::atomic<int> g_blocks{0};

/// Counts what is in use.
template <class Value>
struct Counting_allocator {
    using value_type = Value;

    Counting_allocator() = default;
    template <class Other>
    explicit Counting_allocator(Counting_allocator<Other> const& /*other*/) {}

    Value* allocate(std::size_t count) {
        ++g_blocks;
        return std::allocator<Value>().allocate(count);
    }
    void deallocate(Value* block, std::size_t count) {
        --g_blocks;
        std::allocator<Value>().deallocate(block, count);
    }
};

class Idle_observer : public Offer_observer {
 public:
    void offers_changed(Known_offer_list const& /*offers*/) override {}
};

void await_what_was_posted(Engine& engine) {
    std::promise<void> done;
    engine.strand()->post([&done] { done.set_value(); });
    done.get_future().wait();
}

// The memory of an object goes with the last weak reference to it.
TEST(Known_offers_test, Proxies_that_come_and_go_leave_nothing_behind_although_no_offer_changes) {
    Engine engine;
    for (int number = 0; number < 100; ++number) {
        auto const observer = std::allocate_shared<Idle_observer>(Counting_allocator<Idle_observer>());
        engine.offers().add(observer, "an::Interface", ara::com::InstanceSpecifier("*"));
        await_what_was_posted(engine);
    }
    EXPECT_LE(g_blocks, 1);
}

// A process that does nothing until it is killed, at the latest with this object.
class Sleeping_process {
 public:
    Sleeping_process() : process_({"sleep", "1000"}, {}) {}
    ~Sleeping_process() { process_.signal(SIGKILL); }
    Sleeping_process(Sleeping_process const&) = delete;
    Sleeping_process& operator=(Sleeping_process const&) = delete;

    pid_t id() const { return process_.pid(); }
    void kill() { process_.signal(SIGKILL); }

 private:
    bench::Child_process process_;
};

class Counting_observer : public Offer_observer {
 public:
    void offers_changed(Known_offer_list const& offers) override { numbers.add(offers.size()); }
    void await(std::size_t number) {
        auto const all = numbers.await([number](auto const& seen) { return !seen.empty() && seen.back() == number; });
        EXPECT_EQ(all.back(), number);
    }

    Seen<std::size_t> numbers;
};

class Clock_set_back : public Client {};

// The process of a server that died may be out of sight, so that its offer stays until its lease is over.
TEST_F(Clock_set_back, Between_two_servers_calls_the_later_one) {
    Participant others;
    Writer const offers(others, {offer_topic(), {}}, offer_quality());
    Watching<Network_proxy> lookup("*");
    ara_com_ServiceOffer dead{};
    std::strncpy(dead.interface_name, tarq::udpnm::interface::k_network_state_interface.name,
                 sizeof dead.interface_name - 1);
    std::strncpy(dead.instance_name, "app", sizeof dead.instance_name - 1);
    dead.participant[0] = 1;
    dead.version = k_mapping_version;
    offers.write(&dead, std::chrono::system_clock::now() + std::chrono::hours(1));
    lookup.expect({"app"});
    std::this_thread::sleep_for(std::chrono::milliseconds(1100));
    auto const peer = server({"app"});
    lookup.expect({"app", "app"});
    Network_proxy sut(found<Network_proxy>("app"));
    EXPECT_TRUE(succeeds(sut.RequestNetwork({1})));
}

struct Strangers_offers {
    char const* who;
    char const* interface_name;
    bool is_one_participant;
};

void PrintTo(Strangers_offers const& parameter, std::ostream* out) {
    *out << parameter.who;
}

/// Somebody offers as much as is known of others, and says each time that another process does so.
class Watched_processes : public testing::TestWithParam<Strangers_offers> {
 protected:
    void offer(char const* interface_name, std::uint8_t participant, pid_t process) {
        static auto const space = process_space();
        ara_com_ServiceOffer offer{};
        std::strncpy(offer.interface_name, interface_name, sizeof offer.interface_name - 1);
        std::strncpy(offer.instance_name, std::to_string(process).c_str(), sizeof offer.instance_name - 1);
        offer.participant[0] = participant;
        offer.version = k_mapping_version;
        offer.process = process;
        std::strncpy(offer.process_space, space.c_str(), sizeof offer.process_space - 1);
        offers_.write(&offer);
    }

    static constexpr char const* k_interface = "an::Interface";
    Engine engine_;
    Participant others_;
    Writer const offers_{others_, {offer_topic(), {}}, offer_quality()};
};

TEST_P(Watched_processes, Are_those_of_our_peers_whatever_a_stranger_offers) {
    std::vector<std::unique_ptr<Sleeping_process>> strangers;
    auto const sut = std::make_shared<Counting_observer>();
    auto const before = std::make_shared<Idle_observer>();
    engine_.offers().add(before, "another::Interface", ara::com::InstanceSpecifier("none"));
    for (std::uint8_t number = 0; number < 64; ++number) {
        strangers.push_back(std::make_unique<Sleeping_process>());
        offer(GetParam().interface_name, GetParam().is_one_participant ? 1 : 1 + number, strangers.back()->id());
    }
    Sleeping_process early;
    Sleeping_process late;
    offer(k_interface, 200, early.id());
    engine_.offers().add(sut, k_interface, ara::com::InstanceSpecifier("*"));
    auto const of_stranger = GetParam().is_one_participant ? 64U : 0U;
    sut->await(of_stranger + 1);
    offer(k_interface, 201, late.id());
    sut->await(of_stranger + 2);
    late.kill();
    sut->await(of_stranger + 1);
    early.kill();
    sut->await(of_stranger);
}

INSTANTIATE_TEST_SUITE_P(For, Watched_processes,
                         testing::Values(Strangers_offers{"one participant", "an::Interface", true},
                                         Strangers_offers{"another interface", "a::Strangers_interface", false}));

}  // namespace
}  // namespace com_test
