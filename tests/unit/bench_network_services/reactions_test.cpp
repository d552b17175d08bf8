#include "services_fixture.h"
#include "tarq/com/exception.h"

#include <future>

namespace bench::network {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Reactions_test : public Services_fixture {
 protected:
    Bits data() { return user_data.GetUserData().get().data; }

    /// A call on a thread of its own, for one that waits.
    std::future<void> call_beside() {
        return std::async(std::launch::async, [this] { user_data.SetUserData({1}).get(); });
    }
};

TEST_F(Reactions_test, A_slow_call_acts_at_once_and_is_answered_later) {
    using Clock = std::chrono::steady_clock;
    command({{"do", "reaction"}, {"method", "SetUserData"}, {"delay_ms", 50}});
    auto const start = Clock::now();
    auto call = call_beside();
    EXPECT_TRUE(await_event("call", {{"method", "SetUserData"}}));
    EXPECT_EQ(command({{"do", "list"}})["user_data"], "01");
    call.get();
    EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(50));
}

TEST_F(Reactions_test, A_silent_call_acts_and_is_never_answered_until_the_services_are_withdrawn) {
    command({{"do", "reaction"}, {"method", "SetUserData"}, {"silent", true}});
    auto call = call_beside();
    EXPECT_TRUE(await_event("call", {{"method", "SetUserData"}}));
    EXPECT_EQ(command({{"do", "list"}})["user_data"], "01");
    EXPECT_EQ(call.wait_for(std::chrono::milliseconds(0)), std::future_status::timeout);
    command({{"do", "withdraw"}});
    EXPECT_THROW(call.get(), tarq::com::Infrastructure_exception);
}

TEST_F(Reactions_test, A_slow_call_that_was_given_up_with_the_offer_is_answered_to_nobody) {
    command({{"do", "reaction"}, {"delay_ms", 200}});
    auto call = call_beside();
    EXPECT_TRUE(await_event("call", {{"method", "SetUserData"}}));
    command({{"do", "withdraw"}});
    EXPECT_THROW(call.get(), tarq::com::Infrastructure_exception);
    command({{"do", "offer"}});
    command({{"do", "reaction"}, {"delay_ms", 300}});  // ends when the given-up one has come to its time
    EXPECT_NO_THROW(user_data.SetUserData({2}).get());
}

TEST_F(Reactions_test, Wrong_commands_are_refused_and_change_nothing) {
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
    EXPECT_THAT(data(), ElementsAre(1));
}

}  // namespace
}  // namespace bench::network
