#include "client_fixture.h"
#include "peer_numbers.h"
#include "service_offer.h"

#include <chrono>
#include <csignal>
#include <optional>
#include <string>
#include <thread>

#include <dds/dds.h>

namespace com_test {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr char const* k_not_available = "Service not available exception";

// Faster than a server that is not heard is given up, also one that was lost from sight a moment ago.
constexpr milliseconds k_sooner_than_lease{700};

// Faster than a call that nobody ends.
constexpr milliseconds k_faster_than_timeout{1500};

/// What the engine in this process hears and loses from sight, seen by a reader beside the binding's own. No other
/// process than the peer has offers here.
class Offers_in_sight {
 public:
    Offers_in_sight() {
        auto* const quality = dds_create_qos();
        dds_qset_reliability(quality, DDS_RELIABILITY_RELIABLE, DDS_SECS(10));
        dds_qset_durability(quality, DDS_DURABILITY_TRANSIENT_LOCAL);
        auto const topic =
            dds_create_topic(participant_, &ara_com_ServiceOffer_desc, "ara/com/ServiceOffer", nullptr, nullptr);
        reader_ = dds_create_reader(participant_, topic, quality, nullptr);
        dds_delete_qos(quality);
    }
    ~Offers_in_sight() { dds_delete(participant_); }
    Offers_in_sight(Offers_in_sight const&) = delete;
    Offers_in_sight& operator=(Offers_in_sight const&) = delete;

    bool come() const { return has_one(DDS_ALIVE_INSTANCE_STATE); }
    bool get_lost() const { return has_one(DDS_NOT_ALIVE_NO_WRITERS_INSTANCE_STATE); }

 private:
    bool has_one(std::uint32_t state) const {
        auto const deadline = steady_clock::now() + k_patience;
        while (steady_clock::now() < deadline) {
            void* sample = nullptr;
            dds_sample_info_t info;
            auto const count =
                dds_read_mask(reader_, &sample, &info, 1, 1, DDS_ANY_SAMPLE_STATE | DDS_ANY_VIEW_STATE | state);
            if (count > 0) {
                dds_return_loan(reader_, &sample, count);
                return true;
            }
            std::this_thread::sleep_for(milliseconds(1));
        }
        return false;
    }

    dds_entity_t const participant_{dds_create_participant(DDS_DOMAIN_DEFAULT, nullptr, nullptr)};
    dds_entity_t reader_;
};

class Losing : public Client {
 protected:
    // A call that waits in the peer's handler.
    ximo::com::Future<void> waiting_call() {
        auto future = proxy_.RequestComAlive({1}, k_wait);
        peer_->await_event("request", {{"bytes", {1}}});
        return future;
    }

    // A server that was started again is found within a moment; until then nobody offers the instance.
    void expect_working() {
        EXPECT_EQ(error_once_available([this] { return proxy_.ReleaseComAlive({}); }), "none");
    }

    // Of some hundred calls; nothing when one of them fails.
    std::optional<steady_clock::duration> time_of_calls() {
        auto const begin = steady_clock::now();
        for (int call = 0; call < 500; ++call) {
            if (!succeeds(proxy_.ReleaseComAlive({}))) {
                return std::nullopt;
            }
            peer_->log().messages();
        }
        return steady_clock::now() - begin;
    }

    // The client is killed in one of its calls when the time is over.
    std::optional<steady_clock::duration> time_of_calls_beside_client() {
        bench::Player client({PEER_PROGRAM});
        client.send_line(R"({"do":"call","instance":"app","times":1000000})");
        auto const time = time_of_calls();
        client.process().signal(SIGKILL);
        return time;
    }

    // One to a service whose calls have two seconds.
    ximo::com::Future<void> waiting_short_call() {
        auto future = network_.RequestNetwork({k_wait});
        peer_->await_event("request network");
        return future;
    }

    std::unique_ptr<bench::Player> peer_{started()};
    Com_alive_proxy proxy_{found<Com_alive_proxy>("app")};
    Network_proxy network_{found<Network_proxy>("app")};

    void restart_given_up_soon() {
        peer_->process().signal(SIGKILL);
        peer_ = started(given_up_soon());
    }

    static std::unique_ptr<bench::Player> started(std::vector<std::string> const& environment = {}) {
        return std::make_unique<bench::Player>(std::vector<std::string>{PEER_PROGRAM, "app"}, environment);
    }
};

TEST_F(Losing, A_withdrawal_fails_pending_calls_at_once) {
    auto future = waiting_call();
    auto const begin = steady_clock::now();
    // The answer would come when the handler has ended.
    peer_->send_line(R"({"do":"withdraw","instance":"app"})");
    EXPECT_EQ(error_of(std::move(future)), k_not_available);
    EXPECT_LT(steady_clock::now() - begin, k_faster_than_timeout);
    peer_->process().signal(SIGKILL);
}

TEST_F(Losing, A_killed_server_fails_pending_calls_at_once) {
    auto future = waiting_call();
    auto const begin = steady_clock::now();
    peer_->process().signal(SIGKILL);
    EXPECT_EQ(error_of(std::move(future)), k_not_available);
    EXPECT_LT(steady_clock::now() - begin, k_sooner_than_lease);
}

TEST_F(Losing, All_pending_calls_fail) {
    std::vector<ximo::com::Future<void>> futures;
    futures.push_back(waiting_call());
    for (int call = 0; call < 20; ++call) {
        futures.push_back(proxy_.ReleaseComAlive({}));
    }
    peer_->process().signal(SIGKILL);
    for (auto& future : futures) {
        EXPECT_EQ(error_of(std::move(future)), k_not_available);
    }
}

TEST_F(Losing, Calls_after_a_withdrawal_fail_at_once) {
    Watching<Com_alive_proxy> lookup("*");
    lookup.expect({"app"});
    peer_->command({{"do", "withdraw"}, {"instance", "app"}});
    lookup.expect({});
    auto const begin = steady_clock::now();
    EXPECT_EQ(error_of(proxy_.ReleaseComAlive({})), k_not_available);
    EXPECT_LT(steady_clock::now() - begin, k_faster_than_timeout);
}

TEST_F(Losing, A_new_offer_of_the_same_process_serves_the_proxy_again) {
    peer_->command({{"do", "withdraw"}, {"instance", "app"}});
    peer_->command({{"do", "offer"}, {"instance", "app"}});
    expect_working();
}

TEST_F(Losing, A_server_that_is_killed_and_started_again_serves_the_proxy_again) {
    expect_working();
    peer_->process().signal(SIGKILL);
    peer_ = started();
    expect_working();
}

TEST_F(Losing, A_server_that_ends_and_is_started_again_serves_the_proxy_again) {
    for (int round = 0; round < 5; ++round) {
        expect_working();
        peer_->process().close_input();
        ASSERT_EQ(peer_->process().wait(k_patience), 0);
        peer_ = started();
        expect_working();
    }
}

TEST_F(Losing, A_server_that_stands_still_fails_pending_calls_within_two_seconds) {
    auto const begin = steady_clock::now();
    auto future = waiting_short_call();
    peer_->process().signal(SIGSTOP);
    EXPECT_NE(error_of(std::move(future)), "none");
    EXPECT_LT(steady_clock::now() - begin, milliseconds(10'000)) << "half of the lease";
    peer_->process().signal(SIGCONT);
}

// The calls of the daemon's services wait for the network manager, whom the others' calls wait for as well.
TEST_F(Losing, A_handler_that_does_not_end_fails_its_call_after_two_seconds_and_later_with_the_daemons_services) {
    auto longer = waiting_call();
    auto const begin = steady_clock::now();
    auto future = waiting_short_call();
    EXPECT_THROW(future.get(), tarq::com::Timeout_exception);
    auto const time = steady_clock::now() - begin;
    EXPECT_GE(time, milliseconds(2000));
    EXPECT_LT(time, milliseconds(3000));
    EXPECT_EQ(longer.wait_for(milliseconds(200)), std::future_status::timeout);
    peer_->command({{"do", "continue"}});
    EXPECT_TRUE(succeeds(std::move(longer)));
}

TEST_F(Losing, A_server_that_was_lost_from_sight_is_awaited_for_a_second_and_a_half_and_serves_again_when_it_is_heard) {
    restart_given_up_soon();
    expect_working();
    Watching<Com_alive_proxy> lookup("*");
    lookup.expect({"app"});
    auto pending = waiting_call();
    auto const begin = steady_clock::now();
    peer_->process().signal(SIGSTOP);
    EXPECT_EQ(error_of(std::move(pending)), k_not_available);
    auto const time = steady_clock::now() - begin;
    EXPECT_GE(time, milliseconds(1500));
    EXPECT_LT(time, milliseconds(10'000));
    EXPECT_EQ(error_of(proxy_.ReleaseComAlive({})), k_not_available);
    EXPECT_LT(steady_clock::now() - begin, time + milliseconds(1200)) << "once";
    lookup.expect({});
    peer_->process().signal(SIGCONT);
    lookup.expect({"app"});
    peer_->command({{"do", "continue"}});
    expect_working();
}

TEST_F(Losing, A_server_that_is_killed_while_it_is_awaited_fails_calls_at_once) {
    restart_given_up_soon();
    expect_working();
    auto pending = waiting_call();
    Offers_in_sight const offers;
    ASSERT_TRUE(offers.come());
    peer_->process().signal(SIGSTOP);
    ASSERT_TRUE(offers.get_lost());
    auto const begin = steady_clock::now();
    peer_->process().signal(SIGKILL);
    EXPECT_EQ(error_of(std::move(pending)), k_not_available);
    EXPECT_LT(steady_clock::now() - begin, k_sooner_than_lease);
}

TEST_F(Losing, A_server_that_was_lost_from_sight_for_a_moment_serves_the_next_call_and_is_not_sent_the_last_one_again) {
    restart_given_up_soon();
    expect_working();
    auto pending = waiting_call();
    auto const seen = peer_->position();
    Offers_in_sight const offers;
    ASSERT_TRUE(offers.come());
    peer_->process().signal(SIGSTOP);
    ASSERT_TRUE(offers.get_lost());
    peer_->process().signal(SIGCONT);
    auto next = proxy_.RequestComAlive({3}, 0);
    EXPECT_EQ(error_of(std::move(pending)), k_not_available);
    peer_->command({{"do", "continue"}});
    EXPECT_TRUE(succeeds(std::move(next)));
    EXPECT_EQ(peer_->await_event("request", {}, seen)["bytes"], Bytes{3});
}

// The ends of the older offer may still be there when the newer one is known.
TEST_F(Losing, A_service_that_is_withdrawn_and_offered_again_serves_each_call_that_follows) {
    for (int round = 0; round < 50; ++round) {
        ASSERT_TRUE(succeeds(network_.RequestNetwork({1}))) << round;
        peer_->send_line(R"({"do":"withdraw","instance":"app"})");
        peer_->command({{"do", "offer"}, {"instance", "app"}});
        auto const outcome = error_once_available([this] { return network_.RequestNetwork({1}); });
        EXPECT_EQ(outcome, "none") << round;
        peer_->log().messages();
    }
}

TEST_F(Losing, A_client_that_is_killed_in_its_call_harms_nobody) {
    // On a busy machine one of the times may be long for another reason.
    int harmless = 0;
    std::string times;
    for (int round = 0; round < 5; ++round) {
        auto const usual = time_of_calls_beside_client();
        auto const after = time_of_calls();
        auto const text = [](auto const& time) {
            return time ? std::to_string(time->count() / 1'000'000) + " ms" : std::string("a call that failed");
        };
        times += "\n" + text(usual) + " beside it, " + text(after) + " after its end";
        harmless += usual && after && *after < 3 * *usual + milliseconds(300) ? 1 : 0;
    }
    EXPECT_GE(harmless, 4) << times;
}

}  // namespace
}  // namespace com_test
