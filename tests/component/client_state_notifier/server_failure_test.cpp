// Failures that are not those of a client: the server ends, nobody waits for ever, and it is started again.

#include "server_fixture.h"
#include "support/open_descriptors.h"

#include <atomic>
#include <cerrno>
#include <system_error>

#include <dlfcn.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

// The errors of the next calls, once each; 0 for none.
std::atomic<int> next_poll_failure{0};
std::atomic<int> next_bind_failure{0};

std::atomic<long> last_limit_ms{0};

template <class Function>
Function c_library(Function /*replaced*/, char const* name) {
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

bool fails(std::atomic<int>& failure) {
    errno = failure.exchange(0);
    return errno != 0;
}

}  // namespace

// These take the place of the C library's in this program. A test polls one descriptor, the server more.
extern "C" int ppoll(pollfd* entries, nfds_t count, timespec const* timeout, sigset_t const* signals) {
    if (count > 1) {
        last_limit_ms = timeout == nullptr ? -1 : 1000 * timeout->tv_sec + timeout->tv_nsec / 1'000'000;
        if (fails(next_poll_failure)) {
            return -1;
        }
    }
    return c_library(&::ppoll, "ppoll")(entries, count, timeout, signals);
}

extern "C" int bind(int socket, sockaddr const* address, socklen_t length) noexcept {
    return fails(next_bind_failure) ? -1 : c_library(&::bind, "bind")(socket, address, length);
}

namespace client_state_notifier {

long last_time_limit() {
    return last_limit_ms;
}

namespace {

using ara::log::LogLevel;
using test_support::logged_in;
using test_support::Test_client;
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
    EXPECT_TRUE(eventually([&] { return ::access(path.c_str(), F_OK) != 0; })) << "the socket file has gone";
}

TEST_F(Server_that_fails, Is_started_again_after_a_pause) {
    auto radio = connect("radio");
    auto outcome = request("kPrepSD", 1h);
    auto const start = std::chrono::steady_clock::now();
    next_poll_failure = ENOMEM;
    Test_client const event(path);
    EXPECT_EQ(outcome_of(outcome).status, Callback_status::timed_out);
    EXPECT_TRUE(radio.is_closed_by_server());

    radio = Test_client(path, "radio", "kOff");
    EXPECT_EQ(radio.receive().state, "kOn");
    EXPECT_GE(std::chrono::steady_clock::now() - start, Client_states_impl::k_pause);
    auto second = request("kPrepSD", 5s);
    radio.obey();
    EXPECT_EQ(outcome_of(second).status, Callback_status::succeeded);
    EXPECT_EQ(log.messages(LogLevel::kError).size(), 1U);
}

TEST_F(Server_that_fails, Says_so_each_time_and_at_most_once_a_second) {
    sut.reset();
    files.write("file", "");
    auto const begin = std::chrono::steady_clock::now();
    sut.emplace("kOn", nullptr, files.file("file/below/notification.socket"));
    EXPECT_TRUE(eventually([&] { return log.messages(LogLevel::kError).size() >= 3; }));
    auto const said = static_cast<long>(log.messages(LogLevel::kError).size());
    EXPECT_LE(said, (std::chrono::steady_clock::now() - begin) / Client_states_impl::k_pause + 1);
}

TEST_F(Server_that_fails, Ends_in_the_middle_of_the_pause) {
    next_poll_failure = ENOMEM;
    Test_client const event(path);
    ASSERT_TRUE(eventually([&] { return !log.messages(LogLevel::kError).empty(); }));
    auto const start = std::chrono::steady_clock::now();
    sut.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - start, Client_states_impl::k_pause / 2);
}

TEST_F(Server_that_fails, Says_that_it_could_not_bind) {
    sut.reset();
    next_bind_failure = ENOMEM;
    sut.emplace("kOn", nullptr, path);
    EXPECT_TRUE(has_logged(logged_in("SNCC", LogLevel::kError, "Client_states_impl thread crashed: ",
                                     std::system_error(ENOMEM, std::generic_category(), "Socket::bind(...)").what())));
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
    EXPECT_EQ(outcome_of(request("kOn", 1h)).status, Callback_status::timed_out);
    ::setrlimit(RLIMIT_NOFILE, &before);
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
