#include "client_test.h"

#include <csignal>
#include <thread>

#include <poll.h>

namespace component_client {
namespace {

class Callers_thread : public Client_test {
 protected:
    Callers_thread() { options.own_thread = false; }

    static void await_and_dispatch(Client& client) {
        pollfd ready{client.descriptor(), POLLIN, 0};
        ASSERT_EQ(::poll(&ready, 1, 10'000), 1);
        client.dispatch();
    }

    static bool has_something_to_do(Client const& client) {
        pollfd ready{client.descriptor(), POLLIN, 0};
        return ::poll(&ready, 1, 0) == 1;
    }

    static void dispatch_all(Client& client) {
        while (has_something_to_do(client)) {
            client.dispatch();
        }
    }
};

TEST_F(Callers_thread, Connects_by_its_first_dispatch) {
    Client sut("me", succeed, options);
    EXPECT_FALSE(sut.connected());
    await_and_dispatch(sut);
    EXPECT_TRUE(sut.connected());
    EXPECT_EQ(server->accept().hello().name, "me");
}

TEST_F(Callers_thread, Is_told_by_the_descriptor_when_there_is_something_to_do) {
    Client sut("me", keep_answers(), options);
    await_and_dispatch(sut);
    dispatch_all(sut);
    auto const server_end = server->accept();
    EXPECT_FALSE(has_something_to_do(sut));

    server_end.request(1, "kPrepSD");
    EXPECT_TRUE(has_something_to_do(sut));
    dispatch_all(sut);
    auto answer = answers.take();

    answer.send(Status::succeeded);
    EXPECT_TRUE(has_something_to_do(sut)) << "an answer is to be sent";
    dispatch_all(sut);
    server_end.hello();
    EXPECT_EQ(server_end.reply(), (Reply{1, "kPrepSD", 0}));
    EXPECT_FALSE(has_something_to_do(sut));
}

TEST_F(Callers_thread, Runs_the_handler) {
    std::thread::id handler_thread;
    Client sut(
        "me",
        [&](std::string const&, Answer answer) {
            handler_thread = std::this_thread::get_id();
            answer.send(Status::succeeded);
        },
        options);
    await_and_dispatch(sut);
    auto const server_end = server->accept();
    server_end.request(1, "kPrepSD");
    while (sut.state() != "kPrepSD") {
        await_and_dispatch(sut);
    }
    EXPECT_EQ(handler_thread, std::this_thread::get_id());
}

TEST_F(Callers_thread, Does_not_wait_in_a_dispatch_without_work) {
    server.reset();
    Client sut("me", succeed, options);
    for (int times = 0; times < 1000; ++times) {
        sut.dispatch();
    }
    EXPECT_FALSE(sut.connected());
}

TEST_F(Callers_thread, Closes_by_the_dispatch_after_it_was_stopped_and_connects_no_more) {
    Client sut("me", succeed, options);
    await_and_dispatch(sut);
    auto const server_end = server->accept();
    server_end.hello();
    sut.stop();
    await_and_dispatch(sut);
    EXPECT_FALSE(sut.connected());
    EXPECT_TRUE(server_end.is_closed());

    Client other("me", succeed, options);
    other.stop();
    await_and_dispatch(other);
    EXPECT_FALSE(other.connected());
}

TEST_F(Callers_thread, Gets_the_exception_of_its_handler) {
    Client sut(
        "me", [](std::string const&, Answer const&) { throw std::runtime_error("no brakes"); }, options);
    await_and_dispatch(sut);
    auto const server_end = server->accept();
    server_end.hello();
    server_end.request(1, "kPrepSD");
    EXPECT_THROW(sut.run(), std::runtime_error);
    std::thread runner([&] { sut.run(); });
    EXPECT_EQ(server_end.reply(), (Reply{1, "kOn", 1})) << "the dropped answer";
    sut.stop();
    runner.join();
}

TEST_F(Callers_thread, Gets_the_exception_of_a_connection_callback_and_still_says_hello) {
    options.on_connection = [](bool) { throw std::runtime_error("not now"); };
    Client sut("me", succeed, options);
    EXPECT_THROW(sut.run(), std::runtime_error);
    await_and_dispatch(sut);
    EXPECT_EQ(server->accept().hello().name, "me");
}

TEST_F(Callers_thread, Runs_through_signals_until_stopped) {
    struct sigaction interrupting {};
    interrupting.sa_handler = [](int) {};  // without SA_RESTART
    struct sigaction before {};
    ::sigaction(SIGUSR1, &interrupting, &before);
    Client sut("me", succeed, options);
    std::thread runner([&] { sut.run(); });
    auto const server_end = server->accept();
    server_end.hello();
    for (std::uint32_t number = 1; number <= 50; ++number) {
        ::pthread_kill(runner.native_handle(), SIGUSR1);
        std::this_thread::yield();
        server_end.request(number, "kOn");
        EXPECT_EQ(server_end.reply().number, number);
    }
    sut.stop();
    runner.join();
    ::sigaction(SIGUSR1, &before, nullptr);
    EXPECT_TRUE(server_end.is_closed());
}

// So a server that never stops sending does not keep the caller for ever.
TEST_F(Callers_thread, Reads_a_quarter_of_a_mebibyte_in_one_dispatch_at_most) {
    constexpr std::size_t k_most = std::size_t{64} * 4096;
    auto const request = [](std::uint32_t number) {
        return utilities::serialize({utilities::Type_length_value(number), utilities::Type_length_value("kOn")});
    };
    auto const in_one_dispatch = static_cast<std::uint32_t>(k_most / request(1).size()) + 1;
    std::uint32_t newest = 0;
    Client sut(
        "me",
        [&](std::string const&, Answer answer) {
            EXPECT_LE(answer.number() - newest, in_one_dispatch);
            newest = answer.number();
            answer.withhold();
        },
        options);
    await_and_dispatch(sut);
    auto const server_end = server->accept();
    auto const last = 4 * in_one_dispatch;
    utilities::Bytes flood;
    for (std::uint32_t number = 1; number <= last; ++number) {
        auto const bytes = request(number);
        flood.insert(flood.end(), bytes.begin(), bytes.end());
    }
    std::thread sender([&] { server_end.send(flood); });
    while (newest != last) {
        await_and_dispatch(sut);
    }
    sender.join();
}

TEST_F(Callers_thread, Is_not_taken_by_a_client_with_a_thread_of_its_own) {
    options.own_thread = true;
    Client sut("me", succeed, options);
    EXPECT_THROW(sut.dispatch(), std::logic_error);
    EXPECT_THROW(sut.run(), std::logic_error);
}

}  // namespace
}  // namespace component_client
