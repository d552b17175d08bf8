#include "service_test.h"
#include "statemanager/services/state_manager_cwu_interface.h"
#include "ximo/ap/statemanager/state_management_cwu_interface_proxy.h"

#include <functional>

namespace ximo::ap::statemanager {
namespace {

constexpr char const* k_cwu_service = "ximo::ap::statemanager::StateManagementCWUInterface";

class Cwu_interface_test : public testing::Test {
 protected:
    void note_calls(State_manager_cwu_interface& sut) {
        sut.set_cwu_request_cb([this](std::uint8_t number) { calls.push_back("request " + std::to_string(number)); });
        sut.set_cwu_release_cb([this] { calls.emplace_back("release"); });
    }

    test_support::Fake_binding binding;
    std::vector<std::string> calls;
};

TEST_F(Cwu_interface_test, Hands_calls_on_and_answers_at_once) {
    State_manager_cwu_interface sut("alarm");
    note_calls(sut);

    EXPECT_TRUE(succeeded(sut.RequestCarWakeUp(255)));
    EXPECT_TRUE(succeeded(sut.ReleaseCarWakeUp()));
    EXPECT_TRUE(succeeded(sut.RequestCarWakeUp(0)));

    EXPECT_THAT(calls, ElementsAre("request 255", "release", "request 0"));
}

TEST_F(Cwu_interface_test, Fails_a_call_without_its_callback) {
    State_manager_cwu_interface sut("alarm");

    EXPECT_THROW(sut.RequestCarWakeUp(1), std::bad_function_call);
    EXPECT_THROW(sut.ReleaseCarWakeUp(), std::bad_function_call);

    sut.set_cwu_release_cb([] {});
    EXPECT_THROW(sut.RequestCarWakeUp(1), std::bad_function_call);
    EXPECT_TRUE(succeeded(sut.ReleaseCarWakeUp()));
}

TEST_F(Cwu_interface_test, Replaces_its_callbacks) {
    State_manager_cwu_interface sut("alarm");
    auto const held = std::make_shared<int>(0);
    sut.set_cwu_request_cb([held](std::uint8_t /*number*/) { ++*held; });
    sut.set_cwu_release_cb([held] { ++*held; });
    ASSERT_EQ(held.use_count(), 3);

    note_calls(sut);
    sut.RequestCarWakeUp(1);
    sut.ReleaseCarWakeUp();

    EXPECT_EQ(held.use_count(), 1);
    EXPECT_EQ(*held, 0);
    EXPECT_THAT(calls, ElementsAre("request 1", "release"));
}

TEST_F(Cwu_interface_test, Answers_with_futures_that_are_ready) {
    State_manager_cwu_interface sut("alarm");

    EXPECT_TRUE(succeeded(sut.promise_request_cwu_get_future()));
    EXPECT_TRUE(succeeded(sut.promise_release_cwu_get_future()));
}

TEST_F(Cwu_interface_test, Knows_its_instance_and_refuses_a_string_that_is_none) {
    EXPECT_EQ(State_manager_cwu_interface("alarm").get_instance_id(), "alarm");
    EXPECT_THROW(State_manager_cwu_interface("alarm,roof"), tarq::com::Invalid_argument_exception);
}

TEST_F(Cwu_interface_test, Serves_the_clients_of_its_instance_while_it_is_offered) {
    State_manager_cwu_interface sut("alarm");
    note_calls(sut);
    auto application = client<proxy::StateManagementCWUInterfaceProxy>(k_cwu_service, "alarm");
    sut.offer();

    application.RequestCarWakeUp(7).get();
    application.ReleaseCarWakeUp().get();
    sut.stop_offer();

    EXPECT_THROW(application.ReleaseCarWakeUp().get(), tarq::com::Infrastructure_exception);
    EXPECT_THAT(calls, ElementsAre("request 7", "release"));
}

TEST_F(Cwu_interface_test, Withdraws_its_offer_at_the_end_before_its_callbacks_go) {
    bool offered_at_the_end = true;
    {
        State_manager_cwu_interface sut("alarm");
        // Runs when the callback that holds it goes.
        std::shared_ptr<void> const held(
            nullptr, [&](void* /*nothing*/) { offered_at_the_end = binding.is_offered(k_cwu_service, "alarm"); });
        sut.set_cwu_release_cb([held] {});
        sut.offer();
        EXPECT_TRUE(binding.is_offered(k_cwu_service, "alarm"));
    }

    EXPECT_FALSE(offered_at_the_end);
}

}  // namespace
}  // namespace ximo::ap::statemanager
