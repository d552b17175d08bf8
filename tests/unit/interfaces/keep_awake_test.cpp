// A request that lasts as long as an object, on a binding within the test: what is called, when, and how often.

#include "ximo/ap/statemanager/keep_awake.h"

#include "support/fake_binding.h"
#include "tarq/com/exception.h"
#include "ximo/ap/statemanager/state_management_alive_interface_proxy.h"
#include "ximo/ap/statemanager/state_management_alive_interface_skeleton.h"
#include "ximo/ap/statemanager/state_management_com_alive_interface_skeleton.h"
#include "ximo/ap/statemanager/state_management_cwu_interface_skeleton.h"

#include <chrono>
#include <exception>
#include <future>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace ximo::ap::statemanager {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::IsEmpty;

/// All waits end with an event; this ends those of a test that fails.
constexpr milliseconds k_patience{20'000};

char const* const k_alive = "ximo::ap::statemanager::StateManagementAliveInterface";

ximo::com::Future<void> done() {
    ximo::com::Promise<void> promise;
    promise.set_value();
    return promise.get_future();
}

using Calls = std::vector<std::string>;

template <class Skeleton>
class Told : public Skeleton {
 public:
    Told(char const* instance, Calls& calls)
        : Skeleton(ara::com::InstanceIdentifier(instance), ara::com::MethodCallProcessingMode::kEvent), calls_(calls) {}

 protected:
    ximo::com::Future<void> tell(std::string const& call) {
        calls_.push_back(call);
        return done();
    }

 private:
    Calls& calls_;
};

struct Alive : Told<skeleton::StateManagementAliveInterfaceSkeleton> {
    using Told::Told;
    ximo::com::Future<void> RequestAlive() override { return tell("request"); }
    ximo::com::Future<void> ReleaseAlive() override { return tell("release"); }
};

struct Com : Told<skeleton::StateManagementComAliveInterfaceSkeleton> {
    using Told::Told;
    ximo::com::Future<void> RequestComAlive(std::vector<std::uint8_t> const& bits, std::uint8_t number) override {
        return tell("request " + std::to_string(bits.at(0)) + ' ' + std::to_string(number));
    }
    ximo::com::Future<void> ReleaseComAlive(std::vector<std::uint8_t> const& bits) override {
        return tell("release " + std::to_string(bits.at(0)));
    }
};

struct Wake_up : Told<skeleton::StateManagementCWUInterfaceSkeleton> {
    using Told::Told;
    ximo::com::Future<void> RequestCarWakeUp(std::uint8_t number) override {
        return tell("request " + std::to_string(number));
    }
    ximo::com::Future<void> ReleaseCarWakeUp() override { return tell("release"); }
};

class Keeping_awake : public testing::Test {
 protected:
    Keep_awake::Options telling() {
        return {milliseconds(0), [this](bool is_held) { changes.push_back(is_held); }};
    }

    test_support::Fake_binding binding;
    Calls calls;
    std::vector<bool> changes;
};

TEST_F(Keeping_awake, Requests_what_is_offered_and_releases_it_at_the_end) {
    Alive service("app", calls);
    service.OfferService();
    {
        Keep_awake const sut("app", Ecu_alive());
        EXPECT_TRUE(sut.is_held());
        EXPECT_THAT(calls, ElementsAre("request"));
    }
    EXPECT_THAT(calls, ElementsAre("request", "release"));
}

TEST_F(Keeping_awake, Tells_the_service_what_it_was_told) {
    Com com("app", calls);
    com.OfferService();
    { Keep_awake const sut("app", Com_alive{{7}, 3}); }
    Wake_up wake_up("app", calls);
    wake_up.OfferService();
    { Keep_awake const sut("app", Car_wake_up{5}); }
    EXPECT_THAT(calls, ElementsAre("request 7 3", "release 7", "request 5", "release"));
}

TEST_F(Keeping_awake, Requests_when_the_service_comes_and_again_with_each_new_offer) {
    Keep_awake const sut("app", Ecu_alive(), telling());
    EXPECT_FALSE(sut.is_held());
    EXPECT_FALSE(sut.await(milliseconds(0)));
    Alive service("app", calls);
    service.OfferService();
    EXPECT_TRUE(sut.await(milliseconds(0)));
    service.StopOfferService();
    EXPECT_FALSE(sut.is_held());
    service.OfferService();
    EXPECT_THAT(calls, ElementsAre("request", "request"));
    // Whoever offers now may have taken the place of another one unseen.
    ara::com::ServiceHandle const other(k_alive, ara::com::InstanceIdentifier("app"), "a new process");
    binding.report(k_alive, {other});
    EXPECT_THAT(calls, ElementsAre("request", "request", "request"));
    EXPECT_THAT(changes, ElementsAre(true, false, true));
    binding.fail_next_call(k_alive, std::make_exception_ptr(tarq::com::Timeout_exception("on purpose")));
    EXPECT_THROW(binding.report(k_alive, {other}), tarq::com::Timeout_exception);
    EXPECT_FALSE(sut.is_held());
    EXPECT_THAT(changes, ElementsAre(true, false, true, false));
}

TEST_F(Keeping_awake, Takes_the_longest_time_for_ever) {
    Alive service("app", calls);
    {
        Keep_awake const sut("app", Ecu_alive(), {milliseconds::max(), {}});
        auto waiting = std::async(std::launch::async, [&] { return sut.await(milliseconds::max()); });
        EXPECT_EQ(waiting.wait_for(milliseconds(100)), std::future_status::timeout);
        service.OfferService();
        EXPECT_TRUE(waiting.get());
        EXPECT_TRUE(sut.is_held());
        EXPECT_THAT(calls, ElementsAre("request"));
    }
    EXPECT_THAT(calls, ElementsAre("request", "release"));
}

TEST_F(Keeping_awake, Lets_who_waits_go_on_as_soon_as_it_is_held) {
    Keep_awake sut("app", Ecu_alive());
    Alive service("app", calls);
    for (int round = 0; round < 20; ++round) {  // who begins to wait too late finds it held, which tells nothing
        std::promise<void> begins;
        auto waiting = std::async(std::launch::async, [&] {
            begins.set_value();
            return sut.await(k_patience);
        });
        begins.get_future().wait();
        service.OfferService();
        ASSERT_EQ(waiting.wait_for(k_patience / 2), std::future_status::ready);
        EXPECT_TRUE(waiting.get());
        service.StopOfferService();
    }
}

TEST_F(Keeping_awake, Leaves_the_instances_of_others_alone) {
    Alive service("another", calls);
    service.OfferService();
    { Keep_awake const sut("app", Ecu_alive()); }
    EXPECT_THAT(calls, IsEmpty());
}

TEST_F(Keeping_awake, Wants_one_more_report_after_a_call_that_failed_and_releases_what_may_have_been_done) {
    std::optional<Keep_awake> sut;
    sut.emplace("app", Ecu_alive(), telling());
    binding.hold_reports();
    Alive service("app", calls);
    service.OfferService();
    binding.fail_next_call(k_alive, std::make_exception_ptr(tarq::com::Timeout_exception("on purpose")));
    EXPECT_THROW(binding.release_reports(), tarq::com::Timeout_exception);
    EXPECT_FALSE(sut->is_held());
    sut.reset();
    EXPECT_THAT(calls, ElementsAre("release"));
    EXPECT_THAT(changes, IsEmpty());
}

TEST_F(Keeping_awake, Bears_a_release_that_fails) {
    Alive service("app", calls);
    service.OfferService();
    std::optional<Keep_awake> sut;
    sut.emplace("app", Ecu_alive());
    binding.fail_next_call(k_alive, std::make_exception_ptr(tarq::com::Service_not_available_exception()));
    EXPECT_NO_THROW(sut.reset());
    EXPECT_THAT(calls, ElementsAre("request"));
}

TEST_F(Keeping_awake, Releases_when_its_time_is_over_and_requests_no_more) {
    Alive service("app", calls);
    service.OfferService();
    std::promise<void> over;
    auto const begin = std::chrono::steady_clock::now();
    {
        Keep_awake const sut("app", Ecu_alive(), {milliseconds(20), [&over](bool is_held) {
                                                      if (!is_held) {
                                                          over.set_value();
                                                      }
                                                  }});
        ASSERT_EQ(over.get_future().wait_for(k_patience), std::future_status::ready);
        EXPECT_GE(std::chrono::steady_clock::now() - begin, milliseconds(20));
        EXPECT_FALSE(sut.is_held());
    }
    service.StopOfferService();
    service.OfferService();
    EXPECT_THAT(calls, ElementsAre("request", "release"));
}

TEST_F(Keeping_awake, Ends_long_before_its_time) {
    Alive service("app", calls);
    service.OfferService();
    { Keep_awake const sut("app", Ecu_alive(), {std::chrono::hours(1), {}}); }
    EXPECT_THAT(calls, ElementsAre("request", "release"));
}

TEST_F(Keeping_awake, Refuses_a_name_that_is_none) {
    EXPECT_THROW(Keep_awake("", Ecu_alive()), tarq::com::Invalid_argument_exception);
}

// A lookup's handler may be given the lookup, which it can stop before whoever started it has it.
TEST(A_lookup, May_be_stopped_by_the_handle_that_its_handler_is_given) {
    using Proxy = proxy::StateManagementAliveInterfaceProxy;
    test_support::Fake_binding const binding;
    Calls calls;
    int reports = 0;
    Proxy::StartFindService(
        [&reports](ara::com::ServiceHandleContainer const& /*found*/, ara::com::FindServiceHandle const& lookup) {
            ++reports;
            Proxy::StopFindService(lookup);
        },
        ara::com::InstanceSpecifier("app"));
    Alive service("app", calls);
    service.OfferService();
    EXPECT_EQ(reports, 1);
    EXPECT_THAT(binding.recorded("stop finding"), testing::SizeIs(1));
}

}  // namespace
}  // namespace ximo::ap::statemanager
