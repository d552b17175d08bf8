// Each value that a field is set to is one report to its subscribers: neither a loss of sight nor a new offer makes two
// of it, and two of them are never one because they are equal.

#include "client_fixture.h"
#include "subscribed.h"

#include <chrono>
#include <csignal>
#include <memory>
#include <ostream>
#include <thread>

namespace com_test {
namespace {

using testing::ElementsAre;

Bytes const k_active{1};
Bytes const k_rest{0};
Bytes const k_last{2};

// A process that is given up after half a second of silence, whatever lease others have.
std::vector<std::string> const k_soon_lost{
    "CYCLONEDDS_URI=<CycloneDDS><Domain id='any'><General><Interfaces><NetworkInterface name='lo' multicast='false'/>"
    "</Interfaces><AllowMulticast>false</AllowMulticast></General><Discovery><ParticipantIndex>auto</ParticipantIndex>"
    "<MaxAutoParticipantIndex>60</MaxAutoParticipantIndex><Peers><Peer address='127.0.0.1'/></Peers>"
    "<LeaseDuration>500ms</LeaseDuration></Discovery></Domain></CycloneDDS>"};

class Reports : public Client {
 protected:
    static std::unique_ptr<bench::Player> started(std::vector<std::string> const& words) {
        return std::make_unique<bench::Player>(words, k_soon_lost);
    }
    void command(std::string const& what) { server_->command({{"do", what}, {"instance", "app"}}); }
    void update(Bytes const& bytes) { server_->command({{"do", "update"}, {"instance", "app"}, {"bytes", bytes}}); }

    // What a subscriber hears of: activity, rest, then what happens, and a last value behind which nothing comes.
    template <class Happening>
    std::vector<Bytes> reports(Happening const& happen) {
        Network_proxy network(found<Network_proxy>("app"));
        Subscribed sut(network.NetworkState);
        update(k_active);
        sut.await_last(k_active);
        update(k_rest);
        sut.await_last(k_rest);
        happen();
        await_connection(network);
        update(k_last);
        return sut.await_last(k_last);
    }

    // What a server that is found anew repeats is here when it has answered a call.
    static void await_connection(Network_proxy& network) {
        auto const deadline = std::chrono::steady_clock::now() + k_patience;
        auto outcome = succeeds(network.RequestNetwork({}));
        while (!outcome && std::chrono::steady_clock::now() < deadline) {
            outcome = succeeds(network.RequestNetwork({}));
        }
        EXPECT_TRUE(outcome);
    }

    std::unique_ptr<bench::Player> server_ = started({PEER_PROGRAM, "app"});
    Watching<Network_proxy> lookup_{"*"};
};

TEST_F(Reports, Of_equal_values_are_two) {
    EXPECT_THAT(reports([this] { update(k_rest); }), ElementsAre(k_active, k_rest, k_rest, k_last));
}

TEST_F(Reports, Of_equal_values_are_two_when_the_clock_was_set_back_in_between) {
    EXPECT_THAT(reports([this] {
                    server_->command({{"do", "set clock back"}, {"seconds", 3600}});
                    update(k_rest);
                }),
                ElementsAre(k_active, k_rest, k_rest, k_last));
}

TEST_F(Reports, Are_not_repeated_when_the_server_was_lost_and_is_found_again) {
    EXPECT_THAT(reports([this] {
                    server_->process().signal(SIGSTOP);
                    lookup_.expect({});
                    server_->process().signal(SIGCONT);
                    lookup_.expect({"app"});
                }),
                ElementsAre(k_active, k_rest, k_last));
}

TEST_F(Reports, Are_not_repeated_by_a_new_offer) {
    EXPECT_THAT(reports([this] {
                    command("stop offering");
                    lookup_.expect({});
                    command("offer again");
                    lookup_.expect({"app"});
                }),
                ElementsAre(k_active, k_rest, k_last));
}

TEST_F(Reports, Are_not_repeated_by_a_new_offer_after_the_clock_was_set_back) {
    EXPECT_THAT(reports([this] {
                    server_->command({{"do", "set clock back"}, {"seconds", 3600}});
                    command("stop offering");
                    lookup_.expect({});
                    command("offer again");
                    lookup_.expect({"app"});
                }),
                ElementsAre(k_active, k_rest, k_last));
}

TEST_F(Reports, Of_a_server_that_was_started_anew_are_new) {
    EXPECT_THAT(reports([this] {
                    server_->process().signal(SIGKILL);
                    lookup_.expect({});
                    server_ = started({PEER_PROGRAM, "app"});
                    lookup_.expect({"app"});
                    update(k_rest);
                }),
                ElementsAre(k_active, k_rest, k_rest, k_last));
}

struct Standing_still {
    char const* who;
    bool server;
    bool client;
};

void PrintTo(Standing_still const& parameter, std::ostream* out) {
    *out << parameter.who;
}

/// Both are processes that stand still for 0.9 s, as all of a virtual machine may.
class Reports_of_processes : public Reports, public testing::WithParamInterface<Standing_still> {
 protected:
    void stand_still() {
        auto const signal_all = [this](int number) {
            if (GetParam().server) {
                server_->process().signal(number);
            }
            if (GetParam().client) {
                client_->process().signal(number);
            }
        };
        signal_all(SIGSTOP);
        std::this_thread::sleep_for(std::chrono::milliseconds(900));
        signal_all(SIGCONT);
    }
    void await_sample(Bytes const& bytes) { client_->await_event("sample", {{"bytes", bytes}}); }
    std::vector<Bytes> samples() {
        std::vector<Bytes> all;
        for (auto const& message : client_->log().messages()) {
            if (bench::has_members(message, {{"event", "sample"}})) {
                all.push_back(message.at("bytes").get<Bytes>());
            }
        }
        return all;
    }

    std::unique_ptr<bench::Player> client_ = started({PEER_PROGRAM});
};

TEST_P(Reports_of_processes, Are_not_repeated_when_they_stood_still) {
    client_->command({{"do", "watch"}, {"instance", "app"}});
    update(k_active);
    await_sample(k_active);
    update(k_rest);
    await_sample(k_rest);
    stand_still();
    lookup_.expect({"app"});
    client_->command({{"do", "call"}, {"instance", "app"}, {"times", 1}});
    update(k_last);
    await_sample(k_last);
    EXPECT_THAT(samples(), ElementsAre(k_active, k_rest, k_last));
}

INSTANTIATE_TEST_SUITE_P(For, Reports_of_processes,
                         testing::Values(Standing_still{"server", true, false}, Standing_still{"client", false, true},
                                         Standing_still{"both", true, true}));

}  // namespace
}  // namespace com_test
