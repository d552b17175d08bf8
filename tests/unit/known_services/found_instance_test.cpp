#include "services/found_instance.h"

#include "support/fake_binding.h"
#include "ximo/ap/statemanager/dsa_interface_proxy.h"
#include "ximo/ap/statemanager/dsa_interface_skeleton.h"

#include <thread>

#include <gmock/gmock.h>

namespace services {
namespace {

using std::chrono::milliseconds;
using Proxy = ximo::ap::statemanager::proxy::DSAInterfaceProxy;

class Service : public ximo::ap::statemanager::skeleton::DSAInterfaceSkeleton {
 public:
    explicit Service(char const* instance)
        : DSAInterfaceSkeleton(ara::com::InstanceIdentifier(instance), ara::com::MethodCallProcessingMode::kEvent) {}
    ~Service() override { StopOfferService(); }
    ximo::com::Future<void> RequestRestart(std::uint8_t type) override {
        last_type = type;
        ximo::com::Promise<void> promise;
        promise.set_value();
        return promise.get_future();
    }
    int last_type{0};
};

class Found_instance_test : public testing::Test {
 protected:
    test_support::Fake_binding binding;
    Service service{"one"};
    Service other{"other"};
};

TEST_F(Found_instance_test, Gives_the_way_to_the_instance_with_that_name) {
    service.OfferService();
    other.OfferService();
    Found_instance<Proxy> sut("other");
    sut.await(milliseconds(0))->RequestRestart(3).get();
    EXPECT_EQ(other.last_type, 3);
    EXPECT_EQ(service.last_type, 0);
}

TEST_F(Found_instance_test, Takes_the_first_of_any) {
    service.OfferService();
    other.OfferService();
    Found_instance<Proxy> sut("*");
    sut.await(milliseconds(0))->RequestRestart(3).get();
    EXPECT_EQ(service.last_type, 3);
}

TEST_F(Found_instance_test, Is_not_there_while_it_is_not_offered) {
    Found_instance<Proxy> sut("one");
    EXPECT_EQ(sut.await(milliseconds(1)), nullptr);
    service.OfferService();
    EXPECT_NE(sut.await(milliseconds(0)), nullptr);
    service.StopOfferService();
    EXPECT_EQ(sut.await(milliseconds(1)), nullptr);
}

TEST_F(Found_instance_test, Waits_for_an_offer_that_comes) {
    Found_instance<Proxy> sut("one");
    std::thread offering([this] { service.OfferService(); });
    EXPECT_NE(sut.await(std::chrono::seconds(10)), nullptr);
    offering.join();
}

TEST_F(Found_instance_test, Keeps_its_way_for_the_next_offer) {
    service.OfferService();
    Found_instance<Proxy> sut("one");
    auto const before = sut.await(milliseconds(0));
    service.StopOfferService();
    service.OfferService();
    EXPECT_EQ(sut.await(milliseconds(0)), before);
}

TEST_F(Found_instance_test, Tells_what_comes_and_goes_once) {
    std::vector<bool> changes;
    Found_instance<Proxy> sut("one", [&](std::shared_ptr<Proxy> const& way) { changes.push_back(way != nullptr); });
    other.OfferService();
    service.OfferService();
    other.StopOfferService();
    service.StopOfferService();
    EXPECT_THAT(changes, testing::ElementsAre(true, false));
}

TEST_F(Found_instance_test, Ends_its_lookup) {
    { Found_instance<Proxy> const sut("one"); }
    EXPECT_THAT(binding.recorded("stop finding"), testing::SizeIs(1));
}

}  // namespace
}  // namespace services
