#include "statemanager/services/ecu_alive_interface.h"

#include "service_test.h"
#include "ximo/ap/statemanager/state_management_alive_interface_proxy.h"

namespace ximo::ap::statemanager::services {
namespace {

constexpr char const* k_ecu_alive_service = "ximo::ap::statemanager::StateManagementAliveInterface";

/// Notes who has called, and what the service says then.
class Noting_callback : public Ecu_alive_interface_callback {
 public:
    void ecu_alive_request(std::string const& instance_id) override { note("request " + instance_id); }
    void ecu_alive_release(std::string const& instance_id) override { note("release " + instance_id); }

    Ecu_alive_interface const* service{nullptr};
    std::vector<std::string> calls;

 private:
    void note(std::string call) {
        if (service != nullptr) {
            call += service->app_keeps_ecu_alive() ? " kept" : " not kept";
        }
        calls.push_back(std::move(call));
    }
};

class Ecu_alive_interface_test : public testing::Test {
 protected:
    test_support::Fake_binding binding;
    Noting_callback callback;
};

TEST_F(Ecu_alive_interface_test, Keeps_nothing_alive_and_is_not_offered_at_first) {
    Ecu_alive_interface const sut("door", &callback);

    EXPECT_FALSE(sut.app_keeps_ecu_alive());
    EXPECT_EQ(sut.get_instance_id(), "door");
    EXPECT_THAT(binding.record(), IsEmpty());
}

TEST_F(Ecu_alive_interface_test, Tells_of_a_request_and_of_a_release_with_its_instance) {
    Ecu_alive_interface sut("door", &callback);
    callback.service = &sut;

    EXPECT_TRUE(succeeded(sut.RequestAlive()));
    EXPECT_TRUE(sut.app_keeps_ecu_alive());
    EXPECT_TRUE(succeeded(sut.ReleaseAlive()));
    EXPECT_FALSE(sut.app_keeps_ecu_alive());

    EXPECT_THAT(callback.calls, ElementsAre("request door kept", "release door not kept"));
}

TEST_F(Ecu_alive_interface_test, Answers_without_anybody_to_tell) {
    Ecu_alive_interface sut("door", nullptr);

    EXPECT_TRUE(succeeded(sut.RequestAlive()));
    EXPECT_TRUE(sut.app_keeps_ecu_alive());
    EXPECT_TRUE(succeeded(sut.ReleaseAlive()));
    EXPECT_FALSE(sut.app_keeps_ecu_alive());
}

TEST_F(Ecu_alive_interface_test, Answers_each_call_with_its_own_promise) {
    struct : Ecu_alive_interface {
        using Ecu_alive_interface::Ecu_alive_interface;
        ximo::com::Future<void> promise_request_alive() override {
            answered.emplace_back("request");
            return Ecu_alive_interface::promise_request_alive();
        }
        ximo::com::Future<void> promise_release_alive() override {
            answered.emplace_back("release");
            return Ecu_alive_interface::promise_release_alive();
        }
        std::vector<std::string> answered;
    } sut("door", nullptr);

    EXPECT_TRUE(succeeded(sut.RequestAlive()));
    EXPECT_TRUE(succeeded(sut.ReleaseAlive()));

    EXPECT_THAT(sut.answered, ElementsAre("request", "release"));
}

TEST_F(Ecu_alive_interface_test, Passes_what_the_callback_throws_on) {
    struct : Ecu_alive_interface_callback {
        void ecu_alive_request(std::string const& /*instance_id*/) override { throw std::logic_error("request"); }
        void ecu_alive_release(std::string const& /*instance_id*/) override { throw std::logic_error("release"); }
    } throwing;
    Ecu_alive_interface sut("door", &throwing);

    EXPECT_THROW(sut.RequestAlive(), std::logic_error);
    EXPECT_TRUE(sut.app_keeps_ecu_alive());
    EXPECT_THROW(sut.ReleaseAlive(), std::logic_error);
    EXPECT_FALSE(sut.app_keeps_ecu_alive());
}

TEST_F(Ecu_alive_interface_test, Refuses_a_string_that_is_no_instance) {
    EXPECT_THROW(Ecu_alive_interface("", &callback), tarq::com::Invalid_argument_exception);
    EXPECT_THROW(Ecu_alive_interface("any*", &callback), tarq::com::Invalid_argument_exception);
}

TEST_F(Ecu_alive_interface_test, Serves_its_own_clients) {
    Ecu_alive_interface door("door", &callback);
    Ecu_alive_interface roof("roof", &callback);
    door.OfferService();
    roof.OfferService();
    auto application = client<proxy::StateManagementAliveInterfaceProxy>(k_ecu_alive_service, "roof");

    application.RequestAlive().get();
    EXPECT_FALSE(door.app_keeps_ecu_alive());
    EXPECT_TRUE(roof.app_keeps_ecu_alive());
    application.ReleaseAlive().get();

    EXPECT_THAT(callback.calls, ElementsAre("request roof", "release roof"));
}

TEST_F(Ecu_alive_interface_test, Withdraws_its_offer_at_the_end) {
    {
        Ecu_alive_interface sut("door", &callback);
        sut.OfferService();
    }

    EXPECT_FALSE(binding.is_offered(k_ecu_alive_service, "door"));
}

}  // namespace
}  // namespace ximo::ap::statemanager::services
