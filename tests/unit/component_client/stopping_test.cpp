#include "client_test.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <optional>
#include <thread>
#include <vector>

namespace component_client {
namespace {

class Stopping : public Client_test {};

TEST_F(Stopping, Closes_the_connection) {
    { auto const sut = connected_client(succeed); }
    EXPECT_TRUE(peer->is_closed());
}

// A life that waits for its next try lasts until then at least; a busy machine can make any life longer, but not all of
// them.
TEST_F(Stopping, Does_not_wait_for_a_server) {
    using std::chrono::steady_clock;
    constexpr std::chrono::milliseconds k_until_next_try{100};
    server.reset();
    auto shortest = steady_clock::duration::max();
    for (int life = 0; life < 10; ++life) {
        auto const begin = steady_clock::now();
        std::optional<Client> sut(std::in_place, "me", succeed, options);
        std::this_thread::sleep_for(k_until_next_try / 5);  // it has tried by then, and waits until it tries again
        sut.reset();
        shortest = std::min(shortest, steady_clock::now() - begin);
    }
    EXPECT_LT(shortest, k_until_next_try);
}

TEST_F(Stopping, Sends_the_answers_that_were_given) {
    Mailbox<bool> in_handler;
    Mailbox<bool> go_on;
    {
        auto const sut = connected_client([&](std::string const&, Answer answer) {
            in_handler.put(true);
            go_on.take();
            answer.send(Status::succeeded);
        });
        peer->request(1, "kPrepSD");
        in_handler.take();
        go_on.put(true);
    }
    EXPECT_EQ(peer->reply(), (Reply{1, "kPrepSD", 0}));
    EXPECT_TRUE(peer->is_closed());
}

TEST_F(Stopping, Sends_the_answers_that_were_given_to_a_caller_that_does_not_dispatch_any_more) {
    options.own_thread = false;
    {
        Client sut("me", keep_answers(), options);
        sut.dispatch();
        while (!sut.connected()) {
            sut.dispatch();
        }
        peer.emplace(server->accept());
        peer->request(1, "kPrepSD");
        sut.dispatch();
        EXPECT_TRUE(answers.take().send(Status::succeeded));
    }
    peer->hello();
    EXPECT_EQ(peer->reply(), (Reply{1, "kPrepSD", 0}));
}

TEST_F(Stopping, Is_possible_from_the_handler) {
    std::atomic<Client*> self{nullptr};
    auto sut = connected_client([&self](std::string const&, Answer answer) {
        answer.send(Status::succeeded);
        self.load()->stop();
    });
    self = &sut;
    peer->request(1, "kPrepSD");
    EXPECT_EQ(peer->reply().number, 1U);
    EXPECT_TRUE(peer->is_closed());
}

TEST_F(Stopping, By_destruction_is_possible_from_the_handler) {
    std::unique_ptr<Client> sut;
    Mailbox<bool> is_set;
    Mailbox<bool> is_gone;
    options.own_thread = true;
    sut = std::make_unique<Client>(connected_client([&](std::string const&, Answer answer) {
        is_set.take();
        sut.reset();
        answer.send(Status::succeeded);
        is_gone.put(true);
    }));
    is_set.put(true);
    peer->request(1, "kPrepSD");
    is_gone.take();
    EXPECT_EQ(peer->reply().number, 1U);
    EXPECT_TRUE(peer->is_closed());
}

TEST_F(Stopping, Is_final) {
    auto sut = connected_client(keep_answers());
    sut.stop();
    EXPECT_TRUE(peer->is_closed());
    sut.stop();
    EXPECT_FALSE(sut.connected());
}

// Nothing is expected but that it ends: a fault in it crashes, hangs or is a sanitizer's finding.
TEST_F(Stopping, From_many_threads_in_the_middle_of_everything_is_clean) {
    for (int round = 0; round < 30; ++round) {
        auto sut = connected_client(keep_answers());
        std::vector<std::thread> threads;
        threads.emplace_back([&] {
            try {
                for (std::uint32_t number = 1; number < 200; ++number) {
                    peer->request(number, "kOn");
                }
            } catch (std::system_error const&) {  // the client has gone, as it may
            }
        });
        threads.emplace_back([&] { sut.stop(); });
        threads.emplace_back([&] { sut.set_state(sut.state() + "x"); });
        threads.emplace_back([&] { sut.stop(); });
        for (auto& thread : threads) {
            thread.join();
        }
    }
}

}  // namespace
}  // namespace component_client
