// Which offers are known, to whom they are told, and whose processes are watched.

#include "ara/com/dds/offers/known_offers.h"

#include "ara/com/dds/engine/engine.h"
#include "idle_process.h"
#include "played_services.h"
#include "support/eventually.h"
#include "support/log_capture.h"
#include "support/played_dds.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <unistd.h>

namespace com_unit {
namespace {

using namespace ara::com::dds;  // NOLINT(google-build-using-namespace): what is tested is a part of it
using std::chrono::system_clock;
using test_support::eventually;
using testing::ElementsAre;
using testing::IsEmpty;

/// Keeps what it was told.
class Observer : public Offer_observer {
 public:
    void offers_changed(Known_offer_list const& offers) override {
        std::lock_guard const lock(mutex_);
        reports_.push_back(offers);
    }
    std::vector<Known_offer_list> reports() {
        std::lock_guard const lock(mutex_);
        return reports_;
    }

 private:
    std::mutex mutex_;
    std::vector<Known_offer_list> reports_;
};

class Known_offers_test : public testing::Test {
 protected:
    static constexpr char const* k_interface = "an::Interface";

    // Returns when all that was offered before is known.
    void observe(std::weak_ptr<Offer_observer> const& observer, char const* interface_name = k_interface) {
        engine_.offers().add(observer, interface_name, ara::com::InstanceSpecifier("*"));
        settle();
        settle();
    }

    // What was posted by now has run then.
    void settle() {
        auto const done = std::make_shared<std::promise<void>>();
        engine_.strand()->post([done] { done->set_value(); });
        done->get_future().wait();
    }

    // The end of a process may be told later.
    std::vector<Known_offer_list> reports() {
        settle();
        return sut_->reports();
    }
    Known_offer_list known() {
        auto const all = reports();
        return all.empty() ? Known_offer_list() : all.back();
    }
    std::vector<std::string> names() {
        std::vector<std::string> names;
        for (auto const& offer : known()) {
            names.push_back(offer.instance);
        }
        return names;
    }

    Engine engine_;
    std::shared_ptr<Observer> const sut_{std::make_shared<Observer>()};
    Offering server_;
    Offering another_;
};

/// Counts what is in use.
template <class Value>
struct Counting_allocator {
    using value_type = Value;

    explicit Counting_allocator(int& counted) : blocks(&counted) {}
    template <class Other>
    explicit Counting_allocator(Counting_allocator<Other> const& other) : blocks(other.blocks) {}

    Value* allocate(std::size_t count) {
        ++*blocks;
        return std::allocator<Value>().allocate(count);
    }
    void deallocate(Value* block, std::size_t count) {
        --*blocks;
        std::allocator<Value>().deallocate(block, count);
    }

    int* blocks;
};

// The memory of an object goes with the last weak reference to it.
TEST_F(Known_offers_test, Those_who_come_and_go_leave_nothing_behind_although_no_offer_changes) {
    int blocks = 0;
    for (int number = 0; number < 100; ++number) {
        observe(std::allocate_shared<Observer>(Counting_allocator<Observer>(blocks)));
    }
    EXPECT_LE(blocks, 1);
    server_.write(server_.of(k_interface, "app"));
    settle();
    EXPECT_EQ(blocks, 0) << "and when one changes, nothing at all";
    observe(sut_);
}

struct Odd_offer {
    char const* what;
    std::function<void(ara_com_ServiceOffer&)> change;
    bool is_known;
    pid_t process{0};
};

void PrintTo(Odd_offer const& offer, std::ostream* out) {
    *out << offer.what;
}

class Odd_offers : public Known_offers_test, public testing::WithParamInterface<Odd_offer> {};

TEST_P(Odd_offers, Are_known_as_far_as_they_are_understood) {
    auto offer = server_.of(k_interface, "app", 1);
    GetParam().change(offer);
    observe(sut_);
    server_.write(offer);
    ASSERT_THAT(names(), GetParam().is_known ? testing::SizeIs(1) : testing::SizeIs(0));
    if (GetParam().is_known) {
        EXPECT_EQ(known().front().process, GetParam().process);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Of, Odd_offers,
    testing::Values(Odd_offer{"nothing odd", [](auto& /*offer*/) {}, true, 1},
                    Odd_offer{"this process", [](auto& offer) { offer.process = ::getpid(); }, true, ::getpid()},
                    Odd_offer{"an older mapping", [](auto& offer) { offer.version = 0; }, false},
                    Odd_offer{"a newer mapping", [](auto& offer) { offer.version = 2; }, false},
                    Odd_offer{"no name", [](auto& offer) { offer.instance_name[0] = '\0'; }, false},
                    Odd_offer{"a pattern for a name", [](auto& offer) { offer.instance_name[1] = '*'; }, false},
                    Odd_offer{"no process", [](auto& offer) { offer.process = 0; }, true},
                    Odd_offer{"no number of a process", [](auto& offer) { offer.process = -1; }, true},
                    Odd_offer{"a process elsewhere", [](auto& offer) { offer.process_space[0] ^= 1; }, true}));

TEST_F(Known_offers_test, What_is_told_twice_is_reported_once_and_another_time_is_another_offer) {
    observe(sut_);
    auto const offer = server_.of(k_interface, "app");
    system_clock::time_point const time(std::chrono::hours(1));
    server_.write(offer, time);
    EXPECT_EQ(reports().size(), 2U);
    server_.write(offer, time);
    EXPECT_EQ(reports().size(), 2U);
    server_.write(offer, time + std::chrono::seconds(1));
    EXPECT_EQ(reports().size(), 3U);
    EXPECT_EQ(known().front().since, time + std::chrono::seconds(1));
}

TEST_F(Known_offers_test, Of_a_process_that_has_ended_nothing_is_told_whoever_came_first) {
    Idle_process process;
    process.end();
    auto const offer = server_.of(k_interface, "app", process.id());
    observe(std::make_shared<Observer>(), "another::Interface");
    server_.write(offer);
    observe(sut_);
    EXPECT_THAT(names(), IsEmpty());
    server_.write(server_.of(k_interface, "another", process.id()), system_clock::now());
    another_.write(another_.of(k_interface, "witness"));
    EXPECT_THAT(names(), ElementsAre("witness"));
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
class Watched_processes : public Known_offers_test, public testing::WithParamInterface<Strangers_offers> {};

TEST_P(Watched_processes, Are_those_of_our_peers_whatever_a_stranger_offers) {
    std::vector<std::unique_ptr<Idle_process>> processes;
    std::vector<std::unique_ptr<Offering>> strangers;
    auto const before = std::make_shared<Observer>();
    observe(before, "another::Interface");
    for (int number = 0; number < GetParam().participants; ++number) {
        strangers.push_back(std::make_unique<Offering>());
    }
    for (std::uint8_t number = 0; number < 64; ++number) {
        processes.push_back(std::make_unique<Idle_process>());
        auto const& stranger = *strangers[number % strangers.size()];
        auto offer = stranger.of(GetParam().interface_name, std::to_string(number), processes.back()->id());
        if (GetParam().is_forged) {
            offer.participant[0] = number;
            offer.participant[15] ^= 1;
        }
        stranger.write(offer);
    }
    Idle_process early_process;
    Idle_process late_process;
    server_.write(server_.of(k_interface, "early", early_process.id()));
    observe(sut_);
    EXPECT_EQ(known().size(), GetParam().known + 1);
    another_.write(another_.of(k_interface, "late", late_process.id()));
    EXPECT_EQ(known().size(), GetParam().known + 2);
    late_process.end();
    EXPECT_TRUE(eventually([&] { return known().size() == GetParam().known + 1; }));
    early_process.end();
    EXPECT_TRUE(eventually([&] { return known().size() == GetParam().known; }));
}

INSTANTIATE_TEST_SUITE_P(
    For, Watched_processes,
    testing::Values(Strangers_offers{"one participant", "an::Interface", 1, false, 64},
                    Strangers_offers{"one participant that names others", "an::Interface", 1, true, 0},
                    Strangers_offers{"another interface", "a::Strangers_interface", 64, false, 0}));

/// What somebody else says in a server's name.
class Forged_offers : public Known_offers_test {
 protected:
    Forged_offers() { observe(sut_); }

    Idle_process servers_process_;
    Idle_process another_process_;
};

TEST_F(Forged_offers, Don_t_take_the_watch_of_the_server_that_they_name) {
    test_support::Log_capture log;
    another_.write(server_.of(k_interface, "forged", another_process_.id()));
    another_.write(server_.of(k_interface, "forged too", another_process_.id()));
    another_.write(server_.of(k_interface, "app", another_process_.id()));
    EXPECT_THAT(names(), IsEmpty());
    server_.write(server_.of(k_interface, "app", servers_process_.id()));
    ASSERT_THAT(names(), ElementsAre("app"));
    EXPECT_EQ(known().front().process, servers_process_.id());
    servers_process_.end();
    EXPECT_TRUE(eventually([this] { return known().empty(); }));
    EXPECT_THAT(log.at_least(ara::log::LogLevel::kWarn),
                ElementsAre(test_support::logged(
                    ara::log::LogLevel::kWarn,
                    "An offer that names another participant than its writer's is left alone, as are all such: of "
                    "participant ",
                    to_text(server_.identity()), ", written by ", to_text(another_.identity()))));
}

TEST_F(Forged_offers, Change_and_end_nothing_that_is_offered_and_keep_no_end_of_a_process_from_being_heard) {
    auto const offer = server_.of(k_interface, "app", servers_process_.id());
    server_.write(offer);
    another_.write(server_.of(k_interface, "app", another_process_.id()));
    ASSERT_THAT(names(), ElementsAre("app"));
    EXPECT_EQ(known().front().process, servers_process_.id());
    another_.withdraw(offer);
    EXPECT_THAT(names(), ElementsAre("app"));
    servers_process_.end();
    EXPECT_TRUE(eventually([this] { return known().empty(); }));
}

TEST_F(Forged_offers, Don_t_prolong_the_wait_for_one_that_is_lost) {
    auto const offer = server_.of(k_interface, "app");
    server_.write(offer);
    server_.lose(offer);
    ASSERT_THAT(names(), ElementsAre("app"));
    auto const awaited_until = known().front().awaited_until;
    ASSERT_TRUE(awaited_until);
    auto const told = reports().size();
    another_.write(offer);
    another_.lose(offer);
    EXPECT_EQ(reports().size(), told);
    EXPECT_EQ(known().front().awaited_until, awaited_until);
    EXPECT_TRUE(eventually([this] { return known().empty(); }));
}

// The timer comes for the one that is awaited for the shortest time, wherever it stands in the list.
TEST_F(Known_offers_test, Those_who_are_lost_one_after_the_other_end_all_and_no_other_does) {
    observe(sut_);
    for (auto const* const name : {"a", "b", "c", "d", "stays"}) {
        server_.write(server_.of(k_interface, name));
    }
    for (auto const* const name : {"d", "b", "a", "c"}) {
        server_.lose(server_.of(k_interface, name));
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
    }
    EXPECT_TRUE(eventually([this] { return names() == std::vector<std::string>{"stays"}; }));
}

TEST_F(Known_offers_test, Of_this_process_what_is_claimed_is_known_whatever_its_number) {
    observe(sut_);
    auto const announce = [this](std::string const& what, bool is_claimed) {
        for (int number = 0; number < 70; ++number) {
            auto const name = what + std::to_string(number);
            if (is_claimed) {
                engine_.announcer().claim(k_interface, name);
            }
            engine_.announcer().announce(k_interface, name);
        }
        return known().size();
    };
    EXPECT_EQ(announce("claimed", true), 70U);
    EXPECT_EQ(announce("another", false), 70U + 64U);
}

// Who is found after the first second was not there before.
TEST_F(Known_offers_test, Who_is_found_later_keeps_its_place_when_it_is_heard_again_with_the_same_offer_only) {
    observe(sut_);
    auto const early = server_.of(k_interface, "early");
    server_.write(early);
    ASSERT_THAT(names(), ElementsAre("early"));
    EXPECT_EQ(known().front().found, 0U);
    server_.withdraw(early);
    std::this_thread::sleep_for(std::chrono::milliseconds(1100));
    auto const offer = server_.of(k_interface, "app");
    auto const time = system_clock::now();
    struct {
        system_clock::time_point written;
        std::uint64_t place;
    } const rounds[] = {{time, 1}, {time, 1}, {time + std::chrono::seconds(1), 2}};
    for (auto const& round : rounds) {
        server_.write(offer, round.written);
        ASSERT_THAT(names(), ElementsAre("app"));
        EXPECT_FALSE(known().front().awaited_until);
        EXPECT_EQ(known().front().found, round.place);
        server_.lose(offer);
        ASSERT_THAT(names(), ElementsAre("app"));
        EXPECT_TRUE(known().front().awaited_until);
    }
    EXPECT_TRUE(eventually([this] { return known().empty(); })) << "it is awaited for ever";
}

// The reader is tried again each half second.
TEST_F(Known_offers_test, Tell_once_that_they_can_t_be_heard_of_and_once_that_they_are) {
    test_support::Log_capture log;
    server_.write(server_.of(k_interface, "app"));
    test_support::played_dds::faults().readers_that_fail = 2;
    auto const begin = std::chrono::steady_clock::now();
    observe(sut_);
    EXPECT_TRUE(eventually([this] { return known().size() == 1; }));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::seconds(1));
    using ara::log::LogLevel;
    EXPECT_THAT(log.at_least(LogLevel::kInfo),
                ElementsAre(test_support::logged(LogLevel::kError, "Offers of services can't be heard of yet: ",
                                                 "There can be no reader: Out Of Resources"),
                            test_support::logged(LogLevel::kInfo,
                                                 "Offers of services are heard of now; failures before: ", 2U)));
}

}  // namespace
}  // namespace com_unit
