#include "service_test.h"
#include "statemanager/services/state_manager_com_alive_interface.h"
#include "ximo/ap/statemanager/state_management_com_alive_interface_proxy.h"

#include <functional>

namespace ximo::ap::statemanager {
namespace {

constexpr char const* k_com_alive_service = "ximo::ap::statemanager::StateManagementComAliveInterface";
using Bits = std::vector<std::uint8_t>;

class Com_alive_interface_test : public testing::Test {
 protected:
    void note_calls(State_manager_com_alive_interface& sut) {
        sut.set_com_alive_request_cb([this](Bits const& bits, std::uint8_t number) {
            requested = bits;
            ac_number = number;
            ++requests;
        });
        sut.set_com_alive_release_cb([this](Bits const& bits) {
            released = bits;
            ++releases;
        });
    }

    test_support::Fake_binding binding;
    Bits requested{0xEE};
    Bits released{0xEE};
    int ac_number{-1};
    int requests{0};
    int releases{0};
};

TEST_F(Com_alive_interface_test, Hands_a_request_on_and_answers_at_once) {
    State_manager_com_alive_interface sut("radio");
    note_calls(sut);

    EXPECT_TRUE(succeeded(sut.RequestComAlive({0x01, 0x80}, 16)));

    EXPECT_THAT(requested, ElementsAre(0x01, 0x80));
    EXPECT_EQ(ac_number, 16);
    EXPECT_EQ(requests, 1);
    EXPECT_EQ(releases, 0);
}

TEST_F(Com_alive_interface_test, Hands_a_release_on_and_answers_at_once) {
    State_manager_com_alive_interface sut("radio");
    note_calls(sut);

    EXPECT_TRUE(succeeded(sut.ReleaseComAlive({0xFF})));

    EXPECT_THAT(released, ElementsAre(0xFF));
    EXPECT_EQ(releases, 1);
    EXPECT_EQ(requests, 0);
}

TEST_F(Com_alive_interface_test, Hands_an_empty_vector_and_any_number_on_unchanged) {
    State_manager_com_alive_interface sut("radio");
    note_calls(sut);

    sut.RequestComAlive({}, 255);
    sut.ReleaseComAlive({});

    EXPECT_THAT(requested, IsEmpty());
    EXPECT_THAT(released, IsEmpty());
    EXPECT_EQ(ac_number, 255);
}

TEST_F(Com_alive_interface_test, Fails_a_call_without_its_callback) {
    State_manager_com_alive_interface sut("radio");

    EXPECT_THROW(sut.RequestComAlive({0x01}, 1), std::bad_function_call);
    EXPECT_THROW(sut.ReleaseComAlive({0x01}), std::bad_function_call);

    sut.set_com_alive_release_cb([](Bits const& /*bits*/) {});
    EXPECT_THROW(sut.RequestComAlive({0x01}, 1), std::bad_function_call);
    EXPECT_TRUE(succeeded(sut.ReleaseComAlive({0x01})));
}

TEST_F(Com_alive_interface_test, Replaces_its_callbacks) {
    State_manager_com_alive_interface sut("radio");
    auto const held = std::make_shared<int>(0);
    sut.set_com_alive_request_cb([held](Bits const& /*bits*/, std::uint8_t /*number*/) { ++*held; });
    sut.set_com_alive_release_cb([held](Bits const& /*bits*/) { ++*held; });
    ASSERT_EQ(held.use_count(), 3);

    note_calls(sut);
    sut.RequestComAlive({}, 0);
    sut.ReleaseComAlive({});

    EXPECT_EQ(held.use_count(), 1);
    EXPECT_EQ(*held, 0);
    EXPECT_EQ(requests + releases, 2);
}

TEST_F(Com_alive_interface_test, Answers_with_futures_that_are_ready) {
    State_manager_com_alive_interface sut("radio");

    EXPECT_TRUE(succeeded(sut.promise_request_com_alive_get_future()));
    EXPECT_TRUE(succeeded(sut.promise_release_com_alive_get_future()));
}

TEST_F(Com_alive_interface_test, Knows_its_instance_and_refuses_a_string_that_is_none) {
    EXPECT_EQ(State_manager_com_alive_interface("radio").get_instance_id(), "radio");
    EXPECT_THROW(State_manager_com_alive_interface(" radio"), tarq::com::Invalid_argument_exception);
}

TEST_F(Com_alive_interface_test, Serves_the_clients_of_its_instance_while_it_is_offered) {
    State_manager_com_alive_interface radio("radio");
    State_manager_com_alive_interface phone("phone");
    note_calls(radio);
    auto application = client<proxy::StateManagementComAliveInterfaceProxy>(k_com_alive_service, "radio");
    radio.offer();
    phone.offer();

    application.RequestComAlive({0x01, 0x02, 0x03}, 9).get();
    application.ReleaseComAlive({0x02}).get();

    EXPECT_THAT(requested, ElementsAre(0x01, 0x02, 0x03));
    EXPECT_EQ(ac_number, 9);
    EXPECT_THAT(released, ElementsAre(0x02));

    radio.stop_offer();
    EXPECT_THROW(application.ReleaseComAlive({0x01}).get(), tarq::com::Infrastructure_exception);
    EXPECT_EQ(releases, 1);
}

TEST_F(Com_alive_interface_test, Fails_its_client_when_a_callback_is_missing) {
    State_manager_com_alive_interface sut("radio");
    sut.offer();
    auto application = client<proxy::StateManagementComAliveInterfaceProxy>(k_com_alive_service, "radio");

    EXPECT_THROW(application.RequestComAlive({0x01}, 1).get(), tarq::com::Remote_exception);
}

TEST_F(Com_alive_interface_test, Withdraws_its_offer_at_the_end_before_its_callbacks_go) {
    bool offered_at_the_end = true;
    {
        State_manager_com_alive_interface sut("radio");
        // Runs when the callback that holds it goes.
        std::shared_ptr<void> const held(
            nullptr, [&](void* /*nothing*/) { offered_at_the_end = binding.is_offered(k_com_alive_service, "radio"); });
        sut.set_com_alive_release_cb([held](Bits const& /*bits*/) {});
        sut.offer();
        EXPECT_TRUE(binding.is_offered(k_com_alive_service, "radio"));
    }

    EXPECT_FALSE(offered_at_the_end);
}

}  // namespace
}  // namespace ximo::ap::statemanager
