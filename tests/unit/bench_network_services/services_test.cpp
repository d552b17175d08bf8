#include "services_fixture.h"
#include "tarq/com/exception.h"

namespace bench::network {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

class Services_test : public Services_fixture {
 protected:
    std::string requests() { return command({{"do", "list"}}).value("requests", ""); }
    std::string sent_user_data() { return command({{"do", "list"}}).value("user_data", ""); }
};

TEST_F(Services_test, A_bit_that_the_network_does_not_have_is_refused_as_a_request) {
    EXPECT_THROW(network_state.RequestNetwork({1, 0, 0, 0, 1}).get(), tarq::com::Remote_exception);
    EXPECT_EQ(requests(), "00 00 00 00");
}

TEST_F(Services_test, A_bit_that_the_network_does_not_have_can_be_released) {
    EXPECT_NO_THROW(network_state.ReleaseNetwork({1, 0, 0, 0, 1}).get());
}

TEST_F(Services_test, Zeros_behind_the_last_bit_are_no_request) {
    network_state.RequestNetwork({1, 0, 0, 0, 0}).get();
    EXPECT_EQ(requests(), "01 00 00 00");
}

TEST_F(Services_test, The_field_tells_rest_twice) {
    network_state.RequestNetwork({1}).get();
    network_state.NetworkState.Subscribe(8);
    network_state.NetworkState.Update();
    network_state.ReleaseNetwork({1}).get();
    EXPECT_TRUE(await_event("nm_state", {{"to", "bus sleep"}}));
    command({{"do", "list"}});  // behind everything that belongs to the sleep
    network_state.NetworkState.Update();
    auto const& samples = network_state.NetworkState.GetCachedSamples();
    ASSERT_THAT(samples, SizeIs(2));
    EXPECT_THAT(*samples[0], ElementsAre(0, 0, 0, 0));
    EXPECT_THAT(*samples[1], ElementsAre(0, 0, 0, 0));
}

TEST_F(Services_test, New_user_data_is_told_and_repeated_one_is_not) {
    user_data.UserDataChanged.Subscribe(8);
    user_data.SetUserData({0x80}).get();
    user_data.SetUserData({0x80}).get();
    user_data.SetUserData({0x81}).get();
    user_data.UserDataChanged.Update();
    auto const& samples = user_data.UserDataChanged.GetCachedSamples();
    ASSERT_THAT(samples, SizeIs(2));
    EXPECT_THAT(*samples[0], ElementsAre(0x80));
    EXPECT_THAT(*samples[1], ElementsAre(0x81));
}

}  // namespace
}  // namespace bench::network
