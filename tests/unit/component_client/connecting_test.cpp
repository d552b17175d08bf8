#include "client_test.h"

#include <filesystem>

#include <poll.h>

namespace component_client {
namespace {

class Connecting : public Client_test {};

TEST_F(Connecting, Says_version_name_and_state) {
    options.state = "kPrepSD";
    Client const sut("diag::dcm", succeed, options);
    EXPECT_EQ(server->accept().hello(), (Hello{"component_client_v1", "diag::dcm", "kPrepSD"}));
}

TEST_F(Connecting, Starts_in_normal_operation) {
    Client const sut("me", succeed, options);
    EXPECT_EQ(server->accept().hello().state, "kOn");
}

TEST_F(Connecting, Waits_until_there_is_a_server) {
    server.reset();
    std::filesystem::remove(path);
    Client const sut("me", succeed, options);
    server.emplace(path);
    EXPECT_EQ(server->accept().hello().name, "me");
}

TEST_F(Connecting, Waits_while_nobody_listens_at_the_sockets_file) {
    server.reset();
    ASSERT_TRUE(std::filesystem::exists(path));
    Client const sut("me", succeed, options);
    server.emplace(path);
    EXPECT_EQ(server->accept().hello().name, "me");
}

TEST_F(Connecting, Comes_back_when_the_connection_is_lost) {
    auto const sut = connected_client(succeed);
    peer.reset();
    EXPECT_EQ(server->accept().hello().name, "me");
}

TEST_F(Connecting, Comes_back_when_the_server_does) {
    auto const sut = connected_client(succeed);
    peer.reset();
    server.reset();
    server.emplace(path);
    EXPECT_EQ(server->accept().hello().name, "me");
}

TEST_F(Connecting, Comes_back_with_the_state_answered_last) {
    auto const sut = connected_client(succeed);
    peer->request(1, "kPrepSD");
    peer->reply();
    peer.reset();
    EXPECT_EQ(server->accept().hello().state, "kPrepSD");
}

TEST_F(Connecting, Comes_back_with_a_state_that_it_came_into_by_itself) {
    auto sut = connected_client(succeed);
    sut.set_state("degraded");
    EXPECT_EQ(sut.state(), "degraded");
    peer.reset();
    EXPECT_EQ(server->accept().hello().state, "degraded");
}

TEST_F(Connecting, Comes_back_with_a_state_that_was_answered_while_nobody_was_there) {
    auto const sut = connected_client(keep_answers());
    peer->request(1, "kPrepSD");
    auto answer = answers.take();
    peer.reset();
    peer.emplace(server->accept());
    peer->hello();
    EXPECT_FALSE(answer.send(Status::succeeded)) << "nobody on the new connection has asked";
    EXPECT_EQ(sut.state(), "kPrepSD");
    peer.reset();
    EXPECT_EQ(server->accept().hello().state, "kPrepSD");
}

TEST_F(Connecting, Tells_of_each_connection_and_each_loss) {
    Mailbox<bool> told;
    options.on_connection = [&told](bool connected) { told.put(connected); };
    auto const sut = connected_client(succeed);
    EXPECT_TRUE(told.take());
    EXPECT_TRUE(sut.connected());
    peer.reset();
    EXPECT_FALSE(told.take());
    EXPECT_FALSE(sut.connected());
    peer.emplace(server->accept());
    EXPECT_TRUE(told.take());
}

TEST_F(Connecting, Tells_once_why_it_can_not_and_goes_on_trying) {
    Mailbox<std::string> troubles;
    options.on_trouble = [&troubles](std::string const& text) { troubles.put(text); };
    options.socket_path = directory.file("loop/socket");
    std::filesystem::create_symlink("loop", directory.file("loop"));
    options.own_thread = false;
    Client sut("me", succeed, options);
    auto tries = 3;
    while (tries-- > 0) {
        pollfd ready{sut.descriptor(), POLLIN, 0};
        ASSERT_EQ(::poll(&ready, 1, 5000), 1);
        sut.dispatch();
    }
    EXPECT_THAT(troubles.take(), testing::HasSubstr("Too many levels of symbolic links"));
    troubles.put("the end");
    EXPECT_EQ(troubles.take(), "the end");

    std::filesystem::remove(directory.file("loop"));
    std::filesystem::create_directory(directory.file("loop"));
    Played_server const late(options.socket_path);
    while (!sut.connected()) {
        sut.dispatch();
    }
}

TEST_F(Connecting, Leaves_a_server_that_sends_nonsense_and_comes_back) {
    Mailbox<std::string> troubles;
    options.on_trouble = [&troubles](std::string const& text) { troubles.put(text); };
    auto const sut = connected_client(succeed);
    peer->send({2, 0, 0, 0, 255, 255, 255, 255, 255, 255, 255, 255});
    EXPECT_THAT(troubles.take(), testing::HasSubstr("too big"));
    EXPECT_TRUE(peer->is_closed());
    EXPECT_EQ(server->accept().hello().name, "me");
}

TEST_F(Connecting, Leaves_a_server_whose_request_lacks_an_element) {
    auto const sut = connected_client(succeed);
    peer->send(utilities::serialize({utilities::Type_length_value(7U)}));
    EXPECT_TRUE(peer->is_closed());
    EXPECT_EQ(server->accept().hello().name, "me");
}

// The hello is unread, so that the client's end is reset.
TEST_F(Connecting, Comes_back_without_a_word_when_the_server_goes_with_bytes_unread) {
    Mailbox<std::string> troubles;
    options.on_trouble = [&troubles](std::string const& text) { troubles.put(text); };
    Client const sut("me", succeed, options);
    for (int times = 0; times < 2; ++times) {
        auto const peer_that_goes = server->accept();
        peer_that_goes.await_input();
    }
    EXPECT_EQ(server->accept().hello().name, "me");
    troubles.put("the end");
    EXPECT_EQ(troubles.take(), "the end");
}

TEST_F(Connecting, Needs_a_name_a_handler_and_a_path_that_fits) {
    EXPECT_THROW(Client("", succeed, options), std::invalid_argument);
    EXPECT_THROW(Client("me", nullptr, options), std::invalid_argument);
    options.socket_path = std::string(109, 'x');
    EXPECT_THROW(Client("me", succeed, options), std::runtime_error);
}

}  // namespace
}  // namespace component_client
