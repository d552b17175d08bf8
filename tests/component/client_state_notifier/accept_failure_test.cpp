// Connections that the system refuses to hand out.

#include "base/system_error.h"
#include "server_fixture.h"

#include <atomic>
#include <cerrno>
#include <ctime>
#include <system_error>

#include <dlfcn.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

std::atomic<int> next_failure{0};  // of accept4, once; 0 for none

// From that failure on the server's clock has gone on by so much at each reading, as on a machine where its thread is
// held up again and again.
std::atomic<long> step_after_failure{0};  // milliseconds
thread_local long step = 0;
thread_local long gone_on = 0;

}  // namespace

// These take the place of the C library's in this program.
extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept {
    using Function = int (*)(clockid_t, timespec*);
    static auto* const real = reinterpret_cast<Function>(::dlsym(RTLD_NEXT, "clock_gettime"));
    int const result = real(clock, time);
    gone_on += step;
    time->tv_sec += gone_on / 1000;
    time->tv_nsec += gone_on % 1000 * 1'000'000;
    if (time->tv_nsec >= 1'000'000'000) {
        time->tv_nsec -= 1'000'000'000;
        ++time->tv_sec;
    }
    return result;
}

extern "C" int accept4(int listener, sockaddr* address, socklen_t* length, int flags) {
    if (int const error = next_failure.exchange(0)) {
        step = step_after_failure.exchange(0);
        errno = error;
        return -1;
    }
    return static_cast<int>(::syscall(SYS_accept4, listener, address, length, flags));
}

namespace client_state_notifier {
namespace {

using ara::log::LogLevel;
using test_support::logged_in;
using testing::IsEmpty;

class Accept_that_fails : public Server_test, public testing::WithParamInterface<int> {
 protected:
    void SetUp() override {
        ASSERT_TRUE(has_logged(info("socket created: ", path)));
        next_failure = GetParam();
    }
    void TearDown() override { EXPECT_EQ(next_failure, 0) << "nobody has called it"; }
};

std::string name_of(testing::TestParamInfo<int> const& info) {
    return "error_" + std::to_string(info.param);
}

using With_nothing_to_take = Accept_that_fails;

TEST_P(With_nothing_to_take, Is_ignored) {
    auto client = connect("radio", "kOff");
    EXPECT_EQ(client.receive().state, "kOn");
    EXPECT_THAT(log.at_least(LogLevel::kWarn), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(, With_nothing_to_take, testing::Values(EINTR, EINVAL, EAGAIN), name_of);

using For_a_connection = Accept_that_fails;

TEST_P(For_a_connection, Is_logged_and_survived) {
    auto client = connect("radio", "kOff");
    EXPECT_EQ(client.receive().state, "kOn");
    EXPECT_TRUE(has_logged(
        logged_in("SNCC", LogLevel::kError, "no connection can be taken: ", ::base::system_error_text(GetParam()))));
}

INSTANTIATE_TEST_SUITE_P(, For_a_connection,
                         testing::Values(ECONNABORTED, EPERM, EPROTO, EMFILE, ENFILE, ENOBUFS, ENOMEM), name_of);

class With_a_clock_that_goes_on : public Server_test, public testing::WithParamInterface<int> {};

TEST_P(With_a_clock_that_goes_on, Is_followed_by_another_when_the_pause_is_over) {
    ASSERT_TRUE(has_logged(info("socket created: ", path)));
    step_after_failure = GetParam();
    next_failure = EMFILE;
    auto client = connect("radio", "kOff");
    EXPECT_EQ(client.receive().state, "kOn");
}

INSTANTIATE_TEST_SUITE_P(By, With_a_clock_that_goes_on, testing::Values(0, 10, 20, 30, 40, 60, 80, 90, 99, 110),
                         [](auto const& test) { return std::to_string(test.param) + "_ms_at_each_reading"; });

// The end of the pause comes before that of the newcomer's time.
TEST_F(Server_test, A_pause_after_a_failed_accept_is_no_longer_for_a_newcomer_that_has_not_said_who_it_is) {
    test_support::Test_client newcomer(path);
    auto first = connect("first");  // taken after the newcomer
    next_failure = EMFILE;
    auto second = connect("second", "kOff");
    EXPECT_EQ(second.receive().state, "kOn");
    EXPECT_EQ(next_failure, 0) << "nobody has called it";
    newcomer.introduce("newcomer", "kOff");
    EXPECT_EQ(newcomer.receive().state, "kOn") << "its time has passed";
}

using Of_the_server = Accept_that_fails;

TEST_P(Of_the_server, Ends_it) {
    next_failure = 0;
    auto radio = connect("radio");
    auto outcome = request("kPrepSD", 1h);
    next_failure = GetParam();
    test_support::Test_client client(path);
    EXPECT_TRUE(
        has_logged(logged_in("SNCC", LogLevel::kError, "Client_states_impl thread crashed: ",
                             std::system_error(GetParam(), std::generic_category(), "Socket::accept()").what())));
    EXPECT_EQ(outcome_of(outcome).status, Callback_status::timed_out);
}

INSTANTIATE_TEST_SUITE_P(, Of_the_server, testing::Values(EBADF, ENOTSOCK, EFAULT, EOPNOTSUPP), name_of);

}  // namespace
}  // namespace client_state_notifier
