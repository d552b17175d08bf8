// Connections that the system refuses to hand out.

#include "base/system_error.h"
#include "server_fixture.h"

#include <atomic>
#include <cerrno>
#include <system_error>

#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

std::atomic<int> next_failure{0};  // of accept4, once; 0 for none

}  // namespace

// Takes the place of the C library's in this program.
extern "C" int accept4(int listener, sockaddr* address, socklen_t* length, int flags) {
    if (int const error = next_failure.exchange(0)) {
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
