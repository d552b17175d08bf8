#include "services_fixture.h"
#include "tarq/com/exception.h"

#include <future>

namespace bench::network {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

class Services_test : public Services_fixture {
 protected:
    std::string requests() { return command({{"do", "list"}}).value("requests", ""); }
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

TEST_F(Services_test, A_call_whose_answer_is_held_back_and_that_was_given_up_with_the_offer_is_answered_to_nobody) {
    command({{"do", "reaction"}, {"delay_ms", 200}});
    auto call = std::async(std::launch::async, [this] { user_data.SetUserData({1}).get(); });
    EXPECT_TRUE(await_event("call", {{"method", "SetUserData"}}));
    command({{"do", "withdraw"}});
    EXPECT_THROW(call.get(), tarq::com::Infrastructure_exception);
    command({{"do", "offer"}});
    command({{"do", "reaction"}, {"delay_ms", 300}});  // ends when the given-up one has come to its time
    EXPECT_NO_THROW(user_data.SetUserData({2}).get());
}

TEST_F(Services_test, Wrong_commands_are_refused_and_change_nothing) {
    for (nlohmann::json const& wrong : {
             nlohmann::json{{"do", "reaction"}, {"method", "Reboot"}, {"refuse", true}},
             {{"do", "reaction"}, {"refuse", "yes"}},
             {{"do", "reaction"}, {"refuse", true}, {"delay_ms", -1}},
             {{"do", "reaction"}, {"refuse", true}, {"count", 0}},
             {{"do", "reaction"}, {"refuse", true}, {"when", "now"}},
             {{"do", "clear_reactions"}, {"all", true}},
             {{"do", "offer"}, {"x", 1}},
             {{"do", "withdraw"}, {"x", 1}},
         }) {
        EXPECT_EQ(command(wrong)["ok"], false) << wrong;
    }
    EXPECT_NO_THROW(user_data.SetUserData({1}).get());
    EXPECT_THAT(user_data.GetUserData().get().data, ElementsAre(1));
}

}  // namespace
}  // namespace bench::network
