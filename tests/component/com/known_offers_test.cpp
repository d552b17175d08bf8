// Who wants to know of offers, and is forgotten again; whose processes are watched.

#include "ara/com/dds/offers/known_offers.h"

#include "ara/com/dds/engine/engine.h"
#include "ara/com/dds/entities/endpoints.h"
#include "ara/com/dds/offers/offer_types.h"
#include "ara/com/dds/offers/process_space.h"
#include "bench/process/child_process.h"
#include "client_fixture.h"
#include "engine_hooks.h"
#include "service_offer.h"
#include "support/log_capture.h"
#include "tarq/udpnm/interface/network_state_interface_type.h"

#include <algorithm>
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

/// Who offers something, with what he says of himself.
class Offering {
 public:
    Guid const& identity() const { return participant_.identity(); }
    ara_com_ServiceOffer of(char const* interface_name, std::string const& instance, pid_t process = 0) const {
        static auto const space = process_space();
        ara_com_ServiceOffer offer{};
        std::strncpy(offer.interface_name, interface_name, sizeof offer.interface_name - 1);
        std::strncpy(offer.instance_name, instance.c_str(), sizeof offer.instance_name - 1);
        std::copy(identity().begin(), identity().end(), offer.participant);
        offer.version = k_mapping_version;
        offer.process = process;
        std::strncpy(offer.process_space, space.c_str(), sizeof offer.process_space - 1);
        return offer;
    }
    void write(ara_com_ServiceOffer const& offer,
               std::chrono::system_clock::time_point time = std::chrono::system_clock::now()) const {
        offers_.write(&offer, time);
    }
    void withdraw(ara_com_ServiceOffer const& offer) const { dds_dispose(offers_.entity(), &offer); }
    // As when it is not heard for its lease.
    void lose(ara_com_ServiceOffer const& offer) const { dds_unregister_instance(offers_.entity(), &offer); }

 private:
    Participant participant_;
    Writer const offers_{participant_, {offer_topic(), {}}, offer_quality()};
};

class Clock_set_back : public Client {};

// The process of a server that died may be out of sight, so that its offer stays until its lease is over.
TEST_F(Clock_set_back, Between_two_servers_calls_the_later_one) {
    Offering const others;
    Watching<Network_proxy> lookup("*");
    others.write(others.of(tarq::udpnm::interface::k_network_state_interface.name, "app"),
                 std::chrono::system_clock::now() + std::chrono::hours(1));
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
    int participants;  // that write
    bool is_forged;    // each offer says that another participant makes it
    std::size_t known;
};

void PrintTo(Strangers_offers const& parameter, std::ostream* out) {
    *out << parameter.who;
}

/// Somebody offers as much as is known of others, and says each time that another process does so.
class Watched_processes : public testing::TestWithParam<Strangers_offers> {
 protected:
    static constexpr char const* k_interface = "an::Interface";
    Engine engine_;
};

TEST_P(Watched_processes, Are_those_of_our_peers_whatever_a_stranger_offers) {
    std::vector<std::unique_ptr<Sleeping_process>> processes;
    std::vector<std::unique_ptr<Offering>> strangers;
    auto const sut = std::make_shared<Counting_observer>();
    auto const before = std::make_shared<Idle_observer>();
    engine_.offers().add(before, "another::Interface", ara::com::InstanceSpecifier("none"));
    for (int number = 0; number < GetParam().participants; ++number) {
        strangers.push_back(std::make_unique<Offering>());
    }
    for (std::uint8_t number = 0; number < 64; ++number) {
        processes.push_back(std::make_unique<Sleeping_process>());
        auto const& stranger = *strangers[number % strangers.size()];
        auto offer = stranger.of(GetParam().interface_name, std::to_string(number), processes.back()->id());
        if (GetParam().is_forged) {
            offer.participant[0] = number;
            offer.participant[15] ^= 1;
        }
        stranger.write(offer);
    }
    Offering const early;
    Offering const late;
    Sleeping_process early_process;
    Sleeping_process late_process;
    early.write(early.of(k_interface, "early", early_process.id()));
    engine_.offers().add(sut, k_interface, ara::com::InstanceSpecifier("*"));
    sut->await(GetParam().known + 1);
    late.write(late.of(k_interface, "late", late_process.id()));
    sut->await(GetParam().known + 2);
    late_process.kill();
    sut->await(GetParam().known + 1);
    early_process.kill();
    sut->await(GetParam().known);
}

INSTANTIATE_TEST_SUITE_P(
    For, Watched_processes,
    testing::Values(Strangers_offers{"one participant", "an::Interface", 1, false, 64},
                    Strangers_offers{"one participant that names others", "an::Interface", 1, true, 0},
                    Strangers_offers{"another interface", "a::Strangers_interface", 64, false, 0}));

class Remembering_observer : public Offer_observer {
 public:
    void offers_changed(Known_offer_list const& offers) override { lists.add(offers); }
    // The last report, once it fulfils the condition.
    template <class Condition>
    Known_offer_list await(Condition const& condition) {
        return lists.await([&](auto const& all) { return !all.empty() && condition(all.back()); }).back();
    }
    Known_offer_list await_count(std::size_t count) {
        return await([count](auto const& offers) { return offers.size() == count; });
    }

    Seen<Known_offer_list> lists;
};

/// What somebody else says in a server's name.
class Forged_offers : public testing::Test {
 protected:
    Forged_offers() { engine_.offers().add(sut_, "an::Interface", ara::com::InstanceSpecifier("*")); }

    // What another one offers is known after all that was offered before.
    Known_offer_list known_before(std::string const& witness) {
        forger_.write(forger_.of("an::Interface", witness));
        return sut_->await([&](auto const& offers) {
            return std::any_of(offers.begin(), offers.end(),
                               [&](auto const& offer) { return offer.instance == witness; });
        });
    }

    Engine engine_;
    std::shared_ptr<Remembering_observer> const sut_ = std::make_shared<Remembering_observer>();
    Offering const server_;
    Offering const forger_;
    Sleeping_process servers_process_;
    Sleeping_process another_process_;
};

TEST_F(Forged_offers, Don_t_take_the_watch_of_the_server_that_they_name) {
    test_support::Log_capture log;
    forger_.write(server_.of("an::Interface", "forged", another_process_.id()));
    forger_.write(server_.of("an::Interface", "app", another_process_.id()));
    EXPECT_EQ(known_before("witness").size(), 1U);
    server_.write(server_.of("an::Interface", "app", servers_process_.id()));
    EXPECT_EQ(sut_->await_count(2).front().process, servers_process_.id());
    servers_process_.kill();
    EXPECT_EQ(sut_->await_count(1).front().instance, "witness");
    EXPECT_THAT(log.at_least(ara::log::LogLevel::kWarn),
                testing::ElementsAre(test_support::logged(
                    ara::log::LogLevel::kWarn,
                    "An offer that names another participant than its writer's is left alone, as are all such: of "
                    "participant ",
                    to_text(server_.identity()), ", written by ", to_text(forger_.identity()))));
}

TEST_F(Forged_offers, Change_and_end_nothing_that_is_offered_and_keep_no_end_of_a_process_from_being_heard) {
    auto const offer = server_.of("an::Interface", "app", servers_process_.id());
    server_.write(offer);
    sut_->await_count(1);
    forger_.write(server_.of("an::Interface", "app", another_process_.id()));
    EXPECT_EQ(known_before("first witness").front().process, servers_process_.id());
    forger_.withdraw(offer);
    EXPECT_EQ(known_before("second witness").front().instance, "app");
    servers_process_.kill();
    EXPECT_EQ(sut_->await_count(2).front().instance, "first witness");
}

/// Who is found after the first second was not there before.
class Found_later : public testing::Test {
 protected:
    Found_later() {
        engine_.offers().add(sut_, "an::Interface", ara::com::InstanceSpecifier("*"));
        std::this_thread::sleep_for(std::chrono::milliseconds(1100));
    }

    Engine engine_;
    std::shared_ptr<Remembering_observer> const sut_ = std::make_shared<Remembering_observer>();
    Offering const server_;
};

TEST_F(Found_later, And_lost_from_sight_keeps_its_place_when_it_is_heard_again_with_the_same_offer_only) {
    auto const offer = server_.of("an::Interface", "app");
    auto const time = std::chrono::system_clock::now();
    auto const is_awaited = [](auto const& offers) { return offers.size() == 1 && offers.front().awaited_until; };
    auto const is_heard = [](auto const& offers) { return offers.size() == 1 && !offers.front().awaited_until; };
    server_.write(offer, time);
    EXPECT_EQ(sut_->await(is_heard).front().found, 1U);
    server_.lose(offer);
    sut_->await(is_awaited);
    server_.write(offer, time);
    EXPECT_EQ(sut_->await(is_heard).front().found, 1U);
    server_.lose(offer);
    sut_->await(is_awaited);
    server_.write(offer, time + std::chrono::seconds(1));
    EXPECT_EQ(sut_->await(is_heard).front().found, 2U);
}

// The reader is tried again each half second.
TEST(Known_offers_test, Tell_once_that_they_can_t_be_heard_of_and_once_that_they_are) {
    test_support::Log_capture log;
    Engine engine;
    Offering const server;
    auto const sut = std::make_shared<Counting_observer>();
    server.write(server.of("an::Interface", "app"));
    engine_hooks().readers_that_fail = 2;
    engine.offers().add(sut, "an::Interface", ara::com::InstanceSpecifier("*"));
    sut->await(1);
    using ara::log::LogLevel;
    EXPECT_THAT(
        log.at_least(LogLevel::kInfo),
        testing::ElementsAre(
            test_support::logged(LogLevel::kError, "Offers of services can't be heard of yet: ",
                                 "There can be no reader: Out Of Resources"),
            test_support::logged(LogLevel::kInfo, "Offers of services are heard of now; failures before: ", 2U)));
}

}  // namespace
}  // namespace com_test
