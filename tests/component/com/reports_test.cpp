// Each value that a field is set to is one report to its subscribers: neither a loss of sight nor a new offer makes two
// of it, and two of them are never one because they are equal.

#include "ara/com/dds/entities/endpoints.h"
#include "client_fixture.h"
#include "subscribed.h"
#include "support/eventually.h"
#include "tarq/udpnm/interface/network_state_interface_type.h"

#include <csignal>
#include <memory>
#include <ostream>

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
        EXPECT_EQ(error_once_available([&network] { return network.RequestNetwork({}); }), "none");
    }

    std::unique_ptr<bench::Player> server_{started({PEER_PROGRAM, "app"})};
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

/// The ends of the field in this process, which see those of the others.
class Sight {
 public:
    int ends() const {
        dds_subscription_matched_status_t writers{};
        dds_publication_matched_status_t readers{};
        dds_get_subscription_matched_status(reader_.entity(), &writers);
        dds_get_publication_matched_status(writer_.entity(), &readers);
        return static_cast<int>(writers.current_count + readers.current_count);
    }
    void await_ends(int wanted) const {
        EXPECT_TRUE(test_support::eventually([&] { return ends() == wanted; })) << ends();
    }

 private:
    ara::com::dds::Participant participant_;
    ara::com::dds::Channel const channel_{tarq::udpnm::interface::k_network_state.sample, "app"};
    ara::com::dds::Writer const writer_{participant_, channel_, ara::com::dds::event_writer_quality(true)};
    ara::com::dds::Reader const reader_{participant_, channel_, ara::com::dds::event_reader_quality(true),
                                        [](auto&&...) {}};
};

/// Both are processes, which stand still until they are lost from sight, as all of a virtual machine may.
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
        sight_.await_ends(k_own_ends + 2);
        signal_all(SIGSTOP);
        sight_.await_ends(k_own_ends + 2 - (GetParam().server ? 1 : 0) - (GetParam().client ? 1 : 0));
        signal_all(SIGCONT);
        sight_.await_ends(k_own_ends + 2);
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

    static constexpr int k_own_ends = 2;
    std::unique_ptr<bench::Player> client_{started({PEER_PROGRAM})};
    Sight sight_;
};

TEST_P(Reports_of_processes, Are_not_repeated_when_they_were_lost_from_sight) {
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
