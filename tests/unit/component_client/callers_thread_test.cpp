#include "client_test.h"

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

TEST_F(Callers_thread, Runs_until_stopped) {
    Client sut("me", succeed, options);
    std::thread runner([&] { sut.run(); });
    auto const server_end = server->accept();
    server_end.hello();
    sut.stop();
    runner.join();
    EXPECT_TRUE(server_end.is_closed());
}

TEST_F(Callers_thread, Is_not_taken_by_a_client_with_a_thread_of_its_own) {
    options.own_thread = true;
    Client sut("me", succeed, options);
    EXPECT_THROW(sut.dispatch(), std::logic_error);
    EXPECT_THROW(sut.run(), std::logic_error);
}

}  // namespace
}  // namespace component_client
