// The thread on which the server works.

#include "server_fixture.h"

#include <csignal>
#include <fstream>
#include <utility>

#include <sys/syscall.h>
#include <unistd.h>

namespace client_state_notifier {
namespace {

using test_support::Test_client;

/// What the kernel says of a thread of this process; "" for what it does not know.
std::string status_of(pid_t thread, std::string const& what) {
    std::ifstream status("/proc/self/task/" + std::to_string(thread) + "/status");
    for (std::string word, value; status >> word;) {
        if (word == what + ":") {
            status >> value;
            return value;
        }
    }
    return "";
}

class Thread_of_the_server : public Server_test {
 protected:
    /// Asked of itself, in a predicate.
    pid_t thread() {
        pid_t thread = 0;
        outcome_of(request("kPrepSD", 1h, [&](auto const& /*name*/) {
            thread = static_cast<pid_t>(::syscall(SYS_gettid));
            return false;
        }));
        return thread;
    }

    Test_client const client{connect("radio")};
};

// The count is how often it has given its processor away by itself.
TEST_F(Thread_of_the_server, Waits_without_a_time_limit_while_there_is_nothing_to_do) {
    auto const sut_thread = thread();
    std::string last;
    ASSERT_TRUE(eventually([&] {  // it has gone back to its wait
        std::this_thread::sleep_for(50ms);
        return std::exchange(last, status_of(sut_thread, "voluntary_ctxt_switches")) == last && !last.empty();
    }));
    EXPECT_EQ(last_time_limit(), -1);
    std::this_thread::sleep_for(300ms);
    EXPECT_EQ(status_of(sut_thread, "voluntary_ctxt_switches"), last);
}

TEST_F(Thread_of_the_server, Takes_no_signals) {
    auto const blocked = std::stoull(status_of(thread(), "SigBlk"), nullptr, 16);
    for (int const signal : {SIGTERM, SIGINT, SIGABRT, SIGHUP, SIGUSR1}) {
        EXPECT_NE(blocked >> (signal - 1) & 1U, 0U) << signal;
    }
}

TEST_F(Thread_of_the_server, Calls_everything_back) {
    auto const completed = std::make_shared<std::promise<std::thread::id>>();
    std::thread::id asked;
    sut->request_state_change(
        "kPrepSD",
        [&](auto const& /*name*/) {
            asked = std::this_thread::get_id();
            return false;
        },
        [completed](auto, auto const&) { completed->set_value(std::this_thread::get_id()); }, 1h);
    EXPECT_EQ(completed->get_future().get(), asked);
    EXPECT_NE(asked, std::this_thread::get_id());
}

}  // namespace
}  // namespace client_state_notifier
