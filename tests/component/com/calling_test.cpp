#include "client_fixture.h"

namespace com_test {
namespace {

class Calling : public Client {};

TEST_F(Calling, A_method_runs_in_the_other_process_with_its_arguments) {
    auto peer = server({"app"});
    Com_alive_proxy sut(found<Com_alive_proxy>("app"));
    EXPECT_TRUE(succeeds(sut.RequestComAlive({1, 0, 255}, 7)));
    peer.await_event("request", {{"instance", "app"}, {"bytes", {1, 0, 255}}, {"number", 7}});
}

}  // namespace
}  // namespace com_test
