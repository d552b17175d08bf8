#include "client_fixture.h"
#include "subscribed.h"

#include <chrono>
#include <csignal>

namespace com_test {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using testing::ElementsAre;

class Events : public Client {
 protected:
    void update(Bytes const& bytes) { peer_->command({{"do", "update"}, {"instance", "app"}, {"bytes", bytes}}); }
    void send(Bytes const& bytes) { peer_->command({{"do", "send"}, {"instance", "app"}, {"bytes", bytes}}); }

    // How long many great values take to arrive.
    template <class Subscription>
    steady_clock::duration time_of_updates(Subscription& subscription, std::uint8_t content) {
        auto const begin = steady_clock::now();
        for (int count = 0; count < 200; ++count) {
            update(Bytes(1024, content));
        }
        update({content});
        subscription.await_last({content});
        return steady_clock::now() - begin;
    }

    static std::unique_ptr<bench::Player> started() {
        return std::make_unique<bench::Player>(std::vector<std::string>{PEER_PROGRAM, "app"});
    }
    std::unique_ptr<bench::Player> peer_{started()};
    Network_proxy network_{found<Network_proxy>("app")};
    User_data_proxy user_data_{found<User_data_proxy>("app")};
};

TEST_F(Events, A_new_subscriber_of_a_field_gets_its_value_at_once) {
    update({1});
    update({2});
    Subscribed sut(network_.NetworkState);
    EXPECT_THAT(sut.samples.await_count(1), ElementsAre(Bytes{2}));
}

TEST_F(Events, Each_new_value_of_a_field_arrives_in_order) {
    Subscribed sut(network_.NetworkState);
    update({0});
    sut.await_last({0});
    std::vector<Bytes> expected{{0}};
    for (std::uint8_t number = 1; number <= 100; ++number) {
        expected.push_back({number});
        update(expected.back());
    }
    EXPECT_EQ(sut.samples.await_count(expected.size()), expected);
}

TEST_F(Events, A_value_that_is_the_same_as_before_arrives_again) {
    Subscribed sut(network_.NetworkState);
    update({1});
    sut.await_last({1});
    update({0});
    update({0});
    EXPECT_THAT(sut.samples.await_count(3), ElementsAre(Bytes{1}, Bytes{0}, Bytes{0}));
}

TEST_F(Events, The_value_of_a_field_can_be_asked_for) {
    update({4, 5});
    EXPECT_EQ(network_.NetworkState.Get().get(), (Bytes{4, 5}));
}

TEST_F(Events, A_field_without_a_value_is_empty) {
    EXPECT_EQ(network_.NetworkState.Get().get(), Bytes());
}

TEST_F(Events, A_value_that_was_set_before_the_offer_is_there_with_it) {
    update({7});
    Subscribed sut(network_.NetworkState);
    EXPECT_EQ(sut.await_last({7}).back(), Bytes{7});
}

TEST_F(Events, An_event_reaches_its_subscribers) {
    Subscribed one(user_data_.UserDataChanged);
    User_data_proxy other(found<User_data_proxy>("app"));
    Subscribed two(other.UserDataChanged);
    // A subscription takes its time to be known to the other side, and an event is not kept for it.
    auto const deadline = steady_clock::now() + k_patience;
    auto const has_any = [](auto const& items) { return !items.empty(); };
    for (bool both = false; !both && steady_clock::now() < deadline;) {
        send({1});
        both = has_any(one.samples.now()) && has_any(two.samples.now());
    }
    send({2});
    EXPECT_EQ(one.await_last({2}).back(), Bytes{2});
    EXPECT_EQ(two.await_last({2}).back(), Bytes{2});
}

TEST_F(Events, An_event_is_not_kept_for_later_subscribers) {
    send({1});
    Subscribed sut(user_data_.UserDataChanged);
    auto const deadline = steady_clock::now() + k_patience;
    while (sut.samples.now().empty() && steady_clock::now() < deadline) {
        send({2});
    }
    EXPECT_EQ(sut.samples.await_count(1).front(), Bytes{2});
}

TEST_F(Events, Nothing_arrives_without_a_subscription) {
    Seen<int> calls;
    network_.NetworkState.SetReceiveHandler([&calls] { calls.add(1); });
    network_.NetworkState.Subscribe(1);
    update({1});
    calls.await_count(1);
    network_.NetworkState.Unsubscribe();
    Network_proxy other(found<Network_proxy>("app"));
    Subscribed witness(other.NetworkState);
    update({2});
    witness.await_last({2});
    EXPECT_EQ(calls.now().size(), 1U);
}

TEST_F(Events, A_receive_handler_may_make_calls) {
    Seen<std::string> results;
    network_.NetworkState.SetReceiveHandler([&] { results.add(error_of(network_.RequestNetwork({1}))); });
    network_.NetworkState.Subscribe(1);
    update({1});
    EXPECT_THAT(results.await_count(1), ElementsAre("none"));
    network_.NetworkState.Unsubscribe();
}

TEST_F(Events, A_subscription_goes_on_with_a_server_that_is_started_again) {
    update({1});
    Subscribed sut(network_.NetworkState);
    sut.await_last({1});
    peer_->process().signal(SIGKILL);
    peer_ = started();
    update({2});
    EXPECT_EQ(sut.await_last({2}).back(), Bytes{2});
}

TEST_F(Events, A_subscription_goes_on_with_a_new_offer) {
    update({1});
    Subscribed sut(network_.NetworkState);
    sut.await_last({1});
    peer_->command({{"do", "withdraw"}, {"instance", "app"}});
    peer_->command({{"do", "offer"}, {"instance", "app"}});
    update({2});
    EXPECT_EQ(sut.await_last({2}).back(), Bytes{2});
}

TEST_F(Events, A_subscriber_that_stands_still_does_not_hold_up_the_others) {
    auto other = server({});
    other.command({{"do", "subscribe"}, {"instance", "app"}});
    Subscribed sut(network_.NetworkState);
    update({0});
    sut.await_last({0});
    auto const usual = time_of_updates(sut, 1);
    other.process().signal(SIGSTOP);
    EXPECT_LT(time_of_updates(sut, 2), 3 * usual + milliseconds(300));
    other.process().signal(SIGKILL);
}

}  // namespace
}  // namespace com_test
