#include "completed.h"
#include "support/fake_binding.h"
#include "tarq/udpnm/interface/user_data_interface_proxy.h"
#include "tarq/udpnm/interface/user_data_interface_skeleton.h"

#include <vector>

#include <gmock/gmock.h>

namespace tarq::udpnm::interface {

namespace {

using Bytes = std::vector<std::uint8_t>;
using testing::ElementsAre;
using testing::Pointee;

struct User_data_service : skeleton::UserDataInterfaceSkeleton {
    User_data_service()
        : UserDataInterfaceSkeleton(ara::com::InstanceIdentifier("nm"), ara::com::MethodCallProcessingMode::kEvent) {}
    ximo::com::Future<interface::GetUserData::Output> GetUserData() override {
        ximo::com::Promise<interface::GetUserData::Output> promise;
        promise.set_value({data});
        return promise.get_future();
    }
    ximo::com::Future<void> SetUserData(Bytes const& value) override { return data = value, completed(); }
    Bytes data;
};

TEST(User_data, What_was_set_is_what_is_got) {
    test_support::Fake_binding binding;
    User_data_service service;
    service.OfferService();
    proxy::UserDataInterfaceProxy sut({"", ara::com::InstanceIdentifier("nm"), ""});

    sut.SetUserData({1, 2, 3}).get();

    EXPECT_THAT(sut.GetUserData().get().data, ElementsAre(1, 2, 3));
}

TEST(User_data, An_event_reaches_its_subscribers_but_is_not_kept_for_later_ones) {
    test_support::Fake_binding binding;
    User_data_service service;
    service.OfferService();
    proxy::UserDataInterfaceProxy early({"", ara::com::InstanceIdentifier("nm"), ""});
    proxy::UserDataInterfaceProxy late({"", ara::com::InstanceIdentifier("nm"), ""});
    early.UserDataChanged.Subscribe(1);

    service.UserDataChanged.Send({7});
    late.UserDataChanged.Subscribe(1);

    EXPECT_TRUE(early.UserDataChanged.Update());
    EXPECT_THAT(early.UserDataChanged.GetCachedSamples(), ElementsAre(Pointee(ElementsAre(7))));
    EXPECT_FALSE(late.UserDataChanged.Update());
}

}  // namespace

}  // namespace tarq::udpnm::interface
