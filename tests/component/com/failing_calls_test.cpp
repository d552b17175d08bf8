#include "client_fixture.h"
#include "peer_numbers.h"
#include "peer_services.h"

#include <chrono>
#include <memory>

namespace com_test {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using tarq::com::Remote_exception_code;

class Failing_calls : public Client {};

TEST_F(Failing_calls, A_sequence_that_is_too_long_fails_and_does_not_arrive) {
    auto peer = server({"app"});
    Com_alive_proxy sut(found<Com_alive_proxy>("app"));
    EXPECT_THROW(sut.RequestComAlive(Bytes(1025), 1).get(), tarq::com::Infrastructure_exception);
    EXPECT_TRUE(succeeds(sut.RequestComAlive({9}, 2)));
    EXPECT_EQ(peer.await_event("request")["bytes"], Bytes{9});
}

class Long_winded : public User_data {
 public:
    using User_data::User_data;
    ~Long_winded() override { StopOfferService(); }

    ximo::com::Future<tarq::udpnm::interface::GetUserData::Output> GetUserData() override {
        ximo::com::Promise<tarq::udpnm::interface::GetUserData::Output> promise;
        promise.set_value({Bytes(1025)});
        return promise.get_future();
    }
};

TEST_F(Failing_calls, A_result_that_is_too_long_fails_at_once) {
    Long_winded service("app");
    service.OfferService();
    User_data_proxy sut(found<User_data_proxy>("app"));
    EXPECT_EQ(remote_code(sut.GetUserData()), Remote_exception_code::kUnknownException) << "and not that time is over";
}

TEST_F(Failing_calls, A_handler_that_throws_fails_its_call_and_no_other) {
    auto peer = server({"app"});
    Com_alive_proxy sut(found<Com_alive_proxy>("app"));
    EXPECT_EQ(remote_code(sut.RequestComAlive({}, k_throw)), Remote_exception_code::kUnknownException);
    EXPECT_TRUE(succeeds(sut.RequestComAlive({}, 0)));
}

TEST_F(Failing_calls, A_handler_that_breaks_its_promise_fails_its_call) {
    auto peer = server({"app"});
    Com_alive_proxy sut(found<Com_alive_proxy>("app"));
    EXPECT_EQ(remote_code(sut.RequestComAlive({}, k_break_promise)), Remote_exception_code::kUnknownException);
}

TEST_F(Failing_calls, An_instance_that_nobody_offers_is_not_available_at_once) {
    Com_alive_proxy sut(
        {"ximo::ap::statemanager::StateManagementComAliveInterface", ara::com::InstanceIdentifier("nobody"), "0"});
    auto const begin = steady_clock::now();
    EXPECT_EQ(error_of(sut.RequestComAlive({}, 0)), "Service not available exception");
    EXPECT_LT(steady_clock::now() - begin, milliseconds(1000));
}

TEST_F(Failing_calls, A_proxy_that_goes_ends_its_pending_calls) {
    auto peer = server({"app"});
    auto sut = std::make_unique<Com_alive_proxy>(found<Com_alive_proxy>("app"));
    auto future = sut->RequestComAlive({}, k_wait);
    peer.await_event("request");
    sut.reset();
    ASSERT_EQ(future.wait_for(k_patience), std::future_status::ready);
    EXPECT_THROW(future.get(), tarq::com::Infrastructure_exception);
}

}  // namespace
}  // namespace com_test
