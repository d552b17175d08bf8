// The services by which applications keep the network awake and ask for a car wake-up: twins, but for what a call
// carries.

#include "base/hex.h"
#include "service_test.h"
#include "statemanager/services/state_manager_com_alive_interface.h"
#include "statemanager/services/state_manager_cwu_interface.h"
#include "ximo/ap/statemanager/state_management_com_alive_interface_proxy.h"
#include "ximo/ap/statemanager/state_management_cwu_interface_proxy.h"

#include <functional>

namespace ximo::ap::statemanager {
namespace {

using Calls = std::vector<std::string>;
using Bits = std::vector<std::uint8_t>;

struct Com_alive {
    struct Sut : State_manager_com_alive_interface {
        using State_manager_com_alive_interface::State_manager_com_alive_interface;
        ximo::com::Future<void> promise_request_com_alive_get_future() override {
            answered.emplace_back("request");
            return State_manager_com_alive_interface::promise_request_com_alive_get_future();
        }
        ximo::com::Future<void> promise_release_com_alive_get_future() override {
            answered.emplace_back("release");
            return State_manager_com_alive_interface::promise_release_com_alive_get_future();
        }
        Calls answered;
    };
    using Proxy = proxy::StateManagementComAliveInterfaceProxy;
    static constexpr char const* k_service = "ximo::ap::statemanager::StateManagementComAliveInterface";

    template <class Request, class Release>
    static void set_callbacks(Sut& sut, Request request, Release release) {
        sut.set_com_alive_request_cb([request](Bits const& bits, std::uint8_t number) {
            request("request [" + base::to_hex(bits) + "] " + std::to_string(number));
        });
        sut.set_com_alive_release_cb([release](Bits const& bits) { release("release [" + base::to_hex(bits) + "]"); });
    }
    static auto request(Sut& sut) { return sut.RequestComAlive({0x01, 0x80}, 255); }
    static auto release(Sut& sut) { return sut.ReleaseComAlive({0xff}); }
    static auto request(Proxy& application) { return application.RequestComAlive({0x01, 0x80}, 255); }
    static auto release(Proxy& application) { return application.ReleaseComAlive({0xff}); }
    static Calls calls() { return {"request [01 80] 255", "release [ff]"}; }
};

struct Car_wake_up {
    struct Sut : State_manager_cwu_interface {
        using State_manager_cwu_interface::State_manager_cwu_interface;
        ximo::com::Future<void> promise_request_cwu_get_future() override {
            answered.emplace_back("request");
            return State_manager_cwu_interface::promise_request_cwu_get_future();
        }
        ximo::com::Future<void> promise_release_cwu_get_future() override {
            answered.emplace_back("release");
            return State_manager_cwu_interface::promise_release_cwu_get_future();
        }
        Calls answered;
    };
    using Proxy = proxy::StateManagementCWUInterfaceProxy;
    static constexpr char const* k_service = "ximo::ap::statemanager::StateManagementCWUInterface";

    template <class Request, class Release>
    static void set_callbacks(Sut& sut, Request request, Release release) {
        sut.set_cwu_request_cb([request](std::uint8_t number) { request("request " + std::to_string(number)); });
        sut.set_cwu_release_cb([release] { release("release"); });
    }
    static auto request(Sut& sut) { return sut.RequestCarWakeUp(255); }
    static auto release(Sut& sut) { return sut.ReleaseCarWakeUp(); }
    static auto request(Proxy& application) { return application.RequestCarWakeUp(255); }
    static auto release(Proxy& application) { return application.ReleaseCarWakeUp(); }
    static Calls calls() { return {"request 255", "release"}; }
};

template <class Service>
class Network_requests : public testing::Test {
 protected:
    void note_calls(typename Service::Sut& noted) {
        auto const note = [this](std::string const& call) { calls.push_back(call); };
        Service::set_callbacks(noted, note, note);
    }
    typename Service::Proxy application(char const* instance) {
        return client<typename Service::Proxy>(Service::k_service, instance);
    }

    test_support::Fake_binding binding;
    typename Service::Sut sut{"radio"};
    Calls calls;
};

using Services = testing::Types<Com_alive, Car_wake_up>;
TYPED_TEST_SUITE(Network_requests, Services, );

TYPED_TEST(Network_requests, Are_handed_on_and_answered_at_once_each_with_its_own_promise) {
    this->note_calls(this->sut);
    EXPECT_TRUE(succeeded(TypeParam::request(this->sut)));
    EXPECT_TRUE(succeeded(TypeParam::release(this->sut)));
    EXPECT_EQ(this->calls, TypeParam::calls());
    EXPECT_THAT(this->sut.answered, ElementsAre("request", "release"));
}

TYPED_TEST(Network_requests, Fail_without_their_callback) {
    EXPECT_THROW(TypeParam::request(this->sut), std::bad_function_call);
    EXPECT_THROW(TypeParam::release(this->sut), std::bad_function_call);
    this->sut.offer();
    auto application = this->application("radio");
    EXPECT_THROW(TypeParam::request(application).get(), tarq::com::Remote_exception);
    this->note_calls(this->sut);
    EXPECT_NO_THROW(TypeParam::request(application).get());
}

TYPED_TEST(Network_requests, Go_to_the_callbacks_that_were_set_last) {
    auto const held = std::make_shared<int>(0);
    auto const count = [held](std::string const& /*call*/) { ++*held; };
    TypeParam::set_callbacks(this->sut, count, count);
    ASSERT_EQ(held.use_count(), 4);

    this->note_calls(this->sut);
    TypeParam::request(this->sut);
    TypeParam::release(this->sut);

    EXPECT_EQ(held.use_count(), 2) << "what is held by the sentence above alone";
    EXPECT_EQ(*held, 0);
    EXPECT_EQ(this->calls, TypeParam::calls());
}

TYPED_TEST(Network_requests, Are_those_of_one_instance_whose_name_is_none_that_can_be_mistaken) {
    EXPECT_EQ(this->sut.get_instance_id(), "radio");
    EXPECT_THROW(typename TypeParam::Sut(" radio"), tarq::com::Invalid_argument_exception);
}

TYPED_TEST(Network_requests, Are_served_while_the_instance_is_offered) {
    typename TypeParam::Sut phone("phone");
    this->note_calls(this->sut);
    auto application = this->application("radio");
    this->sut.offer();
    phone.offer();

    TypeParam::request(application).get();
    TypeParam::release(application).get();
    EXPECT_EQ(this->calls, TypeParam::calls());

    this->sut.stop_offer();
    EXPECT_THROW(TypeParam::release(application).get(), tarq::com::Infrastructure_exception);
    EXPECT_EQ(this->calls.size(), 2U);
}

TYPED_TEST(Network_requests, Come_no_more_when_the_callbacks_go_at_the_end) {
    bool offered_at_the_end = true;
    {
        typename TypeParam::Sut phone("phone");
        // Runs when the callbacks that hold it go.
        std::shared_ptr<void> const held(nullptr, [&](void* /*nothing*/) {
            offered_at_the_end = this->binding.is_offered(TypeParam::k_service, "phone");
        });
        auto const hold = [held](std::string const& /*call*/) {};
        TypeParam::set_callbacks(phone, hold, hold);
        phone.offer();
        EXPECT_TRUE(this->binding.is_offered(TypeParam::k_service, "phone"));
    }
    EXPECT_FALSE(offered_at_the_end);
}

}  // namespace
}  // namespace ximo::ap::statemanager
