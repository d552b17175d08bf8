// A server that stands still for a while: what calls come to.

#include "client_fixture.h"
#include "own_client.h"

#include <chrono>
#include <csignal>
#include <thread>
#include <vector>

namespace com_test {
namespace {

using std::chrono::milliseconds;

/// Lets a process that stands still go on after a time.
class Later {
 public:
    Later(bench::Player& peer, milliseconds time)
        : thread_([&peer, time] {
              std::this_thread::sleep_for(time);
              peer.process().signal(SIGCONT);
          }) {}
    ~Later() { thread_.join(); }
    Later(Later const&) = delete;
    Later& operator=(Later const&) = delete;

 private:
    std::thread thread_;
};

class Stalls : public Client, public testing::WithParamInterface<milliseconds> {};

TEST_P(Stalls, Of_a_server_that_was_just_found_lose_no_call) {
    auto peer = server({"app"});
    auto const handle = found<Network_proxy>("app");
    peer.process().signal(SIGSTOP);
    Later const later(peer, GetParam());
    Network_proxy sut(handle);
    EXPECT_TRUE(succeeds(sut.RequestNetwork({1})));
}

TEST_P(Stalls, Of_a_server_in_use_lose_no_call) {
    auto peer = server({"app"});
    Network_proxy sut(found<Network_proxy>("app"));
    ASSERT_TRUE(succeeds(sut.RequestNetwork({1})));
    peer.process().signal(SIGSTOP);
    Later const later(peer, GetParam());
    EXPECT_TRUE(succeeds(sut.RequestNetwork({2})));
}

class Stalls_of_a_client : public Own_client {};

// It does not know that it was lost here meanwhile, and what it has not seen acknowledged comes once more.
TEST_F(Stalls_of_a_client, That_was_lost_on_one_side_alone_repeat_no_request) {
    Network service("app", tell_);
    service.OfferService();
    bench::Player client({PEER_PROGRAM}, given_up_soon());
    client.send_line(R"({"do":"call and stand still","instance":"app"})");
    told_.await_count(2);
    std::this_thread::sleep_for(milliseconds(1500));
    client.process().signal(SIGCONT);
    client.await_event("went on", {{"outcome", "none"}});
    std::vector<Bytes> requests;
    for (auto const& event : told_.await_count(3)) {
        requests.push_back(event.at("bytes").get<Bytes>());
    }
    EXPECT_THAT(requests, testing::ElementsAre(Bytes{1}, Bytes{2}, Bytes{3}));
}

INSTANTIATE_TEST_SUITE_P(Up_to_the_time_of_a_call, Stalls,
                         testing::Values(milliseconds(500), milliseconds(1000), milliseconds(1700)),
                         [](auto const& stall) { return "Of_" + std::to_string(stall.param.count()) + "_ms"; });

}  // namespace
}  // namespace com_test
