#include "client_fixture.h"
#include "peer_numbers.h"

#include <thread>

namespace com_test {
namespace {

class Calling : public Client {
 protected:
    // The bytes of the first requests that the peer tells of.
    static std::vector<Bytes> requests(bench::Player& peer, std::size_t count) {
        std::vector<Bytes> all;
        std::size_t from = 0;
        while (all.size() < count) {
            auto const found = peer.log().await(
                [](auto const& message) { return message.value("event", "") == "request"; }, k_patience, from);
            if (!found) {
                break;
            }
            all.clear();
            for (auto const& message : peer.log().messages()) {
                if (message.value("event", "") == "request") {
                    all.push_back(message["bytes"].get<Bytes>());
                }
            }
            from = peer.position();
        }
        return all;
    }
};

// A number as the bits of a request.
Bytes bits_of(std::size_t number) {
    return {static_cast<std::uint8_t>(number >> 8), static_cast<std::uint8_t>(number)};
}

TEST_F(Calling, A_method_runs_in_the_other_process_with_its_arguments) {
    auto peer = server({"app"});
    Com_alive_proxy sut(found<Com_alive_proxy>("app"));
    EXPECT_TRUE(succeeds(sut.RequestComAlive({1, 0, 255}, 7)));
    peer.await_event("request", {{"instance", "app"}, {"bytes", {1, 0, 255}}, {"number", 7}});
}

TEST_F(Calling, A_sequence_without_elements_and_one_of_the_greatest_length_arrive) {
    auto peer = server({"app"});
    Com_alive_proxy sut(found<Com_alive_proxy>("app"));
    EXPECT_TRUE(succeeds(sut.RequestComAlive({}, 1)));
    EXPECT_TRUE(succeeds(sut.RequestComAlive(Bytes(1024, 7), 2)));
    peer.await_event("request", {{"bytes", Bytes()}, {"number", 1}});
    peer.await_event("request", {{"bytes", Bytes(1024, 7)}, {"number", 2}});
}

TEST_F(Calling, A_result_comes_back) {
    auto peer = server({"app"});
    User_data_proxy sut(found<User_data_proxy>("app"));
    EXPECT_TRUE(succeeds(sut.SetUserData({3, 4, 5})));
    EXPECT_EQ(sut.GetUserData().get().data, (Bytes{3, 4, 5}));
}

TEST_F(Calling, Each_instance_gets_its_own_calls) {
    auto peer = server({"one", "two"});
    Com_alive_proxy one(found<Com_alive_proxy>("one"));
    Com_alive_proxy two(found<Com_alive_proxy>("two"));
    EXPECT_TRUE(succeeds(one.RequestComAlive({1}, 0)));
    EXPECT_TRUE(succeeds(two.RequestComAlive({2}, 0)));
    peer.await_event("request", {{"instance", "one"}, {"bytes", {1}}});
    peer.await_event("request", {{"instance", "two"}, {"bytes", {2}}});
    EXPECT_EQ(requests(peer, 2).size(), 2U);
}

TEST_F(Calling, Thousands_of_calls_arrive_in_order) {
    constexpr std::size_t k_calls = 3000;
    auto peer = server({"app"});
    Com_alive_proxy sut(found<Com_alive_proxy>("app"));
    std::vector<Bytes> expected;
    for (std::size_t number = 0; number < k_calls; ++number) {
        expected.push_back(bits_of(number));
        ASSERT_TRUE(succeeds(sut.RequestComAlive(expected.back(), 0)));
        peer.log().messages();
    }
    EXPECT_EQ(requests(peer, k_calls), expected);
}

TEST_F(Calling, Calls_need_not_wait_for_each_other) {
    auto peer = server({"app"});
    Com_alive_proxy sut(found<Com_alive_proxy>("app"));
    std::vector<ximo::com::Future<void>> futures;
    std::vector<Bytes> expected;
    for (std::size_t number = 0; number < 200; ++number) {
        expected.push_back(bits_of(number));
        futures.push_back(sut.RequestComAlive(expected.back(), 0));
    }
    for (auto& future : futures) {
        EXPECT_TRUE(succeeds(std::move(future)));
    }
    EXPECT_EQ(requests(peer, expected.size()), expected);
}

TEST_F(Calling, Threads_may_share_a_proxy) {
    auto peer = server({"app"});
    User_data_proxy sut(found<User_data_proxy>("app"));
    std::vector<std::thread> threads;
    for (std::uint8_t number = 0; number < 4; ++number) {
        threads.emplace_back([&sut, number] {
            for (int call = 0; call < 200; ++call) {
                EXPECT_TRUE(succeeds(sut.SetUserData({number})));
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
}

TEST_F(Calling, Clients_in_several_processes_are_served_at_the_same_time) {
    auto peer = server({"app"});
    auto other = server({});
    User_data_proxy sut(found<User_data_proxy>("app"));
    other.send_line(R"({"do":"call","instance":"app","times":500})");
    for (int call = 0; call < 500; ++call) {
        ASSERT_TRUE(succeeds(sut.SetUserData({1})));
    }
    auto const answer = other.log().await([](auto const& message) { return message.contains("answer"); }, k_patience);
    ASSERT_TRUE(answer);
    EXPECT_EQ((*answer)["succeeded"], 500);
}

TEST_F(Calling, A_handler_that_waits_holds_up_no_other_instance) {
    auto peer = server({"one", "two"});
    Com_alive_proxy one(found<Com_alive_proxy>("one"));
    Com_alive_proxy two(found<Com_alive_proxy>("two"));
    auto waiting = one.RequestComAlive({}, k_wait);
    peer.await_event("request", {{"instance", "one"}});
    EXPECT_TRUE(succeeds(two.RequestComAlive({}, 0)));
    peer.command({{"do", "continue"}});
    EXPECT_TRUE(succeeds(std::move(waiting)));
}

TEST_F(Calling, Calls_to_one_instance_wait_for_its_handler) {
    auto peer = server({"one"});
    Com_alive_proxy sut(found<Com_alive_proxy>("one"));
    auto first = sut.RequestComAlive({1}, k_wait);
    auto second = sut.RequestComAlive({2}, 0);
    peer.await_event("request", {{"bytes", {1}}});
    EXPECT_EQ(second.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
    EXPECT_EQ(requests(peer, 1).size(), 1U);
    peer.command({{"do", "continue"}});
    EXPECT_TRUE(succeeds(std::move(first)));
    EXPECT_TRUE(succeeds(std::move(second)));
}

}  // namespace
}  // namespace com_test
