#include "client_fixture.h"
#include "peer_numbers.h"

#include <chrono>
#include <memory>
#include <vector>

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

TEST_F(Failing_calls, More_than_a_thousand_calls_that_wait_are_refused) {
    auto peer = server({"app", "other"});
    Com_alive_proxy sut(found<Com_alive_proxy>("app"));
    Com_alive_proxy other(found<Com_alive_proxy>("other"));
    std::vector<ximo::com::Future<void>> futures;
    futures.push_back(sut.RequestComAlive({}, k_wait));
    peer.await_event("request");
    for (int call = 0; call < 1500; ++call) {
        futures.push_back(sut.ReleaseComAlive({}));
    }
    // What is sent later arrives later.
    EXPECT_TRUE(succeeds(other.ReleaseComAlive({})));
    peer.send_line(R"({"do":"continue"})");
    int refused = 0;
    for (auto& future : futures) {
        // The peer tells of each call, and waits when nobody reads that.
        while (future.wait_for(milliseconds(1)) != std::future_status::ready) {
            peer.log().messages();
        }
        refused += remote_code(std::move(future)) == Remote_exception_code::kOutOfResources ? 1 : 0;
    }
    EXPECT_GT(refused, 0);
    EXPECT_LE(refused, 500);
}

TEST_F(Failing_calls, An_instance_that_nobody_offers_is_not_available_at_once) {
    Com_alive_proxy sut(
        {"ximo::ap::statemanager::StateManagementComAliveInterface", ara::com::InstanceIdentifier("nobody"), "0"});
    auto const begin = std::chrono::steady_clock::now();
    EXPECT_EQ(error_of(sut.RequestComAlive({}, 0)), "Service not available exception");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(400));
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
