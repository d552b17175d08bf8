#include "server_fixture.h"

#include <sys/stat.h>

namespace client_state_notifier {
namespace {

using ara::log::LogLevel;
using test_support::logged_in;
using test_support::Test_client;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

using Connecting = Server_test;

TEST_F(Connecting, Works_at_a_socket_in_a_directory_that_the_server_makes) {
    Test_client const client(path);
    struct stat directory {};
    ASSERT_EQ(::stat(files.file("run").c_str(), &directory), 0);
    EXPECT_EQ(directory.st_mode & 0777U, 0755U);
    EXPECT_TRUE(has_logged(info("socket created: ", path)));
}

TEST_F(Connecting, Tells_nobody_before_the_introduction) {
    Test_client const silent(path);
    auto const seat = connect("seat");  // the silent one has been taken before it
    EXPECT_THAT(sut->get_connected_clients(), ElementsAre(Pair("seat", testing::_)));
}

TEST_F(Connecting, Does_not_wait_for_others_that_say_nothing) {
    Test_client const before(path);
    Test_client late(path);
    Test_client const after(path);
    auto const seat = connect("seat");  // those before it have been taken
    late.introduce("late", "kOn");
    EXPECT_TRUE(eventually([&] { return sut->get_connected_clients().size() == 2; }));
    EXPECT_THAT(log.at_least(LogLevel::kWarn), IsEmpty()) << "nobody had to be dropped for it";
}

TEST_F(Connecting, Adds_a_client_whose_state_is_not_known_yet) {
    auto const client = connect("radio");
    EXPECT_THAT(sut->get_connected_clients(), ElementsAre(Pair("radio", "unknown")));
    EXPECT_TRUE(has_logged(
        logged_in("SNCC", LogLevel::kInfo, "client connected: name = ", "radio", ", current state = ", "kOn")));
}

TEST_F(Connecting, Sends_nothing_to_a_client_in_the_current_state) {
    auto client = connect("radio", "kOn");
    auto const other = connect("seat");  // served after whatever would have been sent
    EXPECT_FALSE(client.has_input());
}

TEST_F(Connecting, Sends_the_current_state_with_number_zero_to_a_client_in_another) {
    auto client = connect("radio", "kPrepSD");
    auto const request = client.receive();
    EXPECT_EQ(request.number, 0U);
    EXPECT_EQ(request.state, "kOn");
}

TEST_F(Connecting, Takes_over_the_state_that_a_client_reaches_after_it) {
    auto client = connect("radio", "kPrepSD");
    client.obey();
    EXPECT_TRUE(eventually([&] { return sut->get_connected_clients().front().second == "kOn"; }));
    EXPECT_THAT(reports(), IsEmpty());
}

TEST_F(Connecting, Takes_an_answer_that_comes_together_with_the_introduction) {
    Test_client client(path);
    auto bytes = utilities::serialize({utilities::Type_length_value("component_client_v1"),
                                       utilities::Type_length_value("radio"), utilities::Type_length_value("kOff")});
    auto const answer = utilities::serialize(
        {utilities::Type_length_value(0U), utilities::Type_length_value("kOn"), utilities::Type_length_value(0U)});
    bytes.insert(bytes.end(), answer.begin(), answer.end());
    client.send_bytes(bytes.data(), bytes.size());
    EXPECT_TRUE(eventually([&] { return !sut->get_connected_clients().empty(); }));
    EXPECT_TRUE(eventually([&] { return sut->get_connected_clients().front().second == "kOn"; }));
}

TEST_F(Connecting, Compares_with_the_state_that_was_set_last) {
    sut->set_default_state("kPrepSD");
    auto late = connect("radio", "kOn");
    EXPECT_EQ(late.receive().state, "kPrepSD");
    auto prepared = connect("seat", "kPrepSD");
    auto const other = connect("other", "kPrepSD");
    EXPECT_FALSE(prepared.has_input());
}

TEST_F(Connecting, Is_not_changed_by_a_request) {
    auto client = connect("radio");
    auto outcome = request("kPrepSD");
    client.obey();
    outcome_of(outcome);
    auto late = connect("seat", "kPrepSD");
    EXPECT_EQ(late.receive().state, "kOn");
}

TEST_F(Connecting, Reports_a_new_name_to_nobody) {
    auto const client = connect("radio");
    EXPECT_THAT(reports(), IsEmpty());
}

TEST_F(Connecting, Reports_a_name_that_is_connected_already_and_keeps_both) {
    auto const first = connect("radio");
    auto const second = connect("radio", "kPrepSD");
    ASSERT_THAT(reports(), SizeIs(1));
    EXPECT_EQ(reports()[0].name, "radio");
    EXPECT_EQ(reports()[0].status, Client_status::connected_under_known_name);
    EXPECT_EQ(reports()[0].state, "kPrepSD");
    EXPECT_THAT(sut->get_connected_clients(), ElementsAre(Pair("radio", "unknown"), Pair("radio", "unknown")));
}

TEST_F(Connecting, Reports_a_name_once_however_many_have_it) {
    auto const first = connect("radio");
    auto const second = connect("radio");
    auto const third = connect("radio");
    EXPECT_THAT(reports(), SizeIs(2)) << "for the second and for the third";
    EXPECT_THAT(sut->get_connected_clients(), SizeIs(3));
}

// A backlog of ten is full when eleven wait.
TEST_F(Connecting, Lets_a_few_wait_while_the_server_is_busy_and_sends_the_others_away) {
    auto const radio = connect("radio");
    Busy_server const busy(*sut);
    std::vector<utilities::Socket> waiting;
    auto const address = utilities::create_unix_address(path);
    for (int result = 0; result == 0 && waiting.size() < 100;) {
        waiting.emplace_back(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0);
        result = ::connect(waiting.back().get_fd(), reinterpret_cast<sockaddr const*>(&address), sizeof address);
    }
    EXPECT_EQ(errno, EAGAIN);
    EXPECT_EQ(waiting.size() - 1, 11U);
}

TEST_F(Connecting, Looks_at_no_protocol_version) {
    Test_client client(path);
    client.send({utilities::Type_length_value("component_client_v9"), utilities::Type_length_value("radio"),
                 utilities::Type_length_value("kOn")});
    EXPECT_TRUE(eventually([&] { return sut->get_connected_clients().size() == 1; }));
}

TEST_F(Connecting, Forgets_a_client_that_goes) {
    { auto const client = connect("radio"); }
    EXPECT_TRUE(eventually([&] { return sut->get_connected_clients().empty(); }));
    EXPECT_TRUE(has_logged(info("client disconnected: ", "radio")));
}

TEST_F(Connecting, Forgets_a_client_that_goes_without_reading_what_it_was_sent) {
    { auto const client = connect("radio", "kPrepSD"); }
    EXPECT_TRUE(has_logged(info("client disconnected: ", "radio")));
}

TEST_F(Connecting, Hears_what_a_client_said_before_it_went) {
    {
        auto client = connect("radio");
        auto const stays = connect("seat");
        auto outcome = request("kPrepSD", 5s, [](auto const& name) { return name == "radio"; });
        client.obey();
        ::shutdown(client.socket().get_fd(), SHUT_WR);
        EXPECT_EQ(outcome_of(outcome).status, Callback_status::succeeded);
    }
}

TEST_F(Connecting, Replaces_the_socket_file_of_an_earlier_process) {
    sut.reset();
    files.write("run/notification.socket", "stale");
    sut.emplace("kOn", nullptr, path);
    Test_client const client(path, "radio", "kOn");
    EXPECT_TRUE(eventually([&] { return !sut->get_connected_clients().empty(); }));
}

TEST_F(Connecting, Ends_with_the_server_and_leaves_no_socket_file) {
    auto client = connect("radio");
    sut.reset();
    EXPECT_TRUE(client.is_closed_by_server());
    EXPECT_NE(::access(path.c_str(), F_OK), 0);
}

TEST_F(Connecting, Works_without_a_status_callback) {
    sut.reset();
    sut.emplace("kOn", nullptr, path);
    auto const first = connect("radio");
    auto second = connect("radio", "kPrepSD");
    EXPECT_EQ(second.receive().state, "kOn");
}

}  // namespace
}  // namespace client_state_notifier
