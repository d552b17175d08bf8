// Failures that are not those of a client: the thread ends, and nobody waits for ever.

#include "server_fixture.h"
#include "support/open_descriptors.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

#include <sys/resource.h>
#include <unistd.h>

namespace client_state_notifier {
namespace {

using ara::log::LogLevel;
using test_support::logged_in;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class Server_that_fails : public Server_test {};

TEST_F(Server_that_fails, Says_so_and_completes_requests_as_timed_out) {
    sut.reset();
    sut.emplace("kOn", nullptr, files.file("run/") + std::string(200, 'x') + ".socket");
    EXPECT_TRUE(eventually([&] { return !log.messages(LogLevel::kError).empty(); }));
    auto const error = log.messages(LogLevel::kError).front();
    EXPECT_EQ(error.context, "SNCC");
    EXPECT_EQ(error.arguments.front(), test_support::make_log_argument("Client_states_impl thread crashed: "));
    auto const [status, results] = outcome_of(request("kPrepSD", 1h));
    EXPECT_EQ(status, Callback_status::timed_out);
    EXPECT_THAT(results, IsEmpty());
    EXPECT_EQ(outcome_of(request("kOn", 1h)).status, Callback_status::timed_out) << "and the next as well";
    EXPECT_THAT(sut->get_connected_clients(), IsEmpty());
}

// Its wake-up channel breaks, which it opens before everything else.
TEST_F(Server_that_fails, Completes_the_request_in_progress_as_timed_out_and_closes_all_connections) {
    sut.reset();
    int const wake_up_channel = test_support::next_descriptor();
    sut.emplace("kOn", nullptr, path);
    auto radio = connect("radio");
    auto seat = connect("seat");
    auto outcome = request("kPrepSD", 1h);
    radio.obey();
    ASSERT_TRUE(eventually([&] { return sut->get_connected_clients().front().second == "kPrepSD"; }));
    seat.receive();

    ::shutdown(wake_up_channel, SHUT_RDWR);

    auto const [status, results] = outcome_of(outcome);
    EXPECT_EQ(status, Callback_status::timed_out);
    EXPECT_THAT(results, ElementsAre(Pair("radio", Component_client_return_type::succeeded),
                                     Pair("seat", Component_client_return_type::timed_out)));
    EXPECT_TRUE(has_logged(logged_in("SNCC", LogLevel::kError,
                                     "Client_states_impl thread crashed: ", "Socket::recv called with closed socket")));
    EXPECT_TRUE(seat.is_closed_by_server());
    EXPECT_THAT(sut->get_connected_clients(), IsEmpty());
    EXPECT_EQ(outcome_of(request("kOn", 1h)).status, Callback_status::timed_out);
    EXPECT_NE(::access(path.c_str(), F_OK), 0) << "the socket file has gone";
}

TEST_F(Server_that_fails, Says_that_it_could_not_bind) {
    sut.reset();
    std::filesystem::create_symlink("nowhere", files.file("link"));
    sut.emplace("kOn", nullptr, files.file("link"));
    EXPECT_TRUE(
        has_logged(logged_in("SNCC", LogLevel::kError, "Client_states_impl thread crashed: ",
                             std::system_error(EADDRINUSE, std::generic_category(), "Socket::bind(...)").what())));
}

// A poll set may not be larger than the number of descriptors that the process may have.
TEST_F(Server_that_fails, Says_that_it_could_not_poll) {
    ASSERT_TRUE(has_logged(info("socket created: ", path)));
    rlimit before{};
    ::getrlimit(RLIMIT_NOFILE, &before);
    rlimit const one{1, before.rlim_max};
    ::setrlimit(RLIMIT_NOFILE, &one);
    auto first = request("kPrepSD", 1h);  // wakes it, and then it polls again
    EXPECT_TRUE(has_logged(logged_in("SNCC", LogLevel::kError, "Client_states_impl thread crashed: ",
                                     std::system_error(EINVAL, std::generic_category(), "Socket::poll()").what())));
    ::setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_EQ(outcome_of(request("kOn", 1h)).status, Callback_status::timed_out);
}

TEST_F(Server_that_fails, Fails_where_the_directory_cannot_be_made) {
    sut.reset();
    files.write("file", "");
    sut.emplace("kOn", nullptr, files.file("file/below/notification.socket"));
    EXPECT_EQ(outcome_of(request("kPrepSD", 1h)).status, Callback_status::timed_out);
    EXPECT_FALSE(log.messages(LogLevel::kError).empty());
}

}  // namespace
}  // namespace client_state_notifier
