// Reasons that need a machine which stands at one place: a network that keeps quiet, a driver or a network manager that
// lets the daemon wait, a daemon that is killed while it writes its page, a notification server that the system
// refuses.

#include "base/descriptor.h"
#include "bench/process/player.h"
#include "status_machine.h"

#include <cerrno>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/wait.h>

namespace bench::vehicle {
namespace {

using test_support::Test_client;
using testing::AllOf;
using testing::AnyOf;
using testing::HasSubstr;
using testing::StartsWith;

class Reasons_story : public Status_page {
 protected:
    /// A network manager to a story's liking instead of the vehicle's own.
    void start_with_manager(std::vector<std::string> const& options_of_node) {
        options.with_network = false;
        std::vector<std::string> words{VEHICLE_BUILD "/bench/network/bench_network_node", "127.0.0.11"};
        words.insert(words.end(), options_of_node.begin(), options_of_node.end());
        manager = std::make_unique<Player>(words);
        Story::start_and_run();
    }

    void TearDown() override {
        Status_page::TearDown();
        manager.reset();
    }

    /// The next word is taken slowly enough to stop the daemon meanwhile: it stands where it writes, until `go_on`.
    void slow_down_next_word() {
        machine->hypervisor().command(
            {{"do", "fault"}, {"file", "set_status"}, {"operation", "write"}, {"delay_ms", 2'000}});
    }
    void stop_while_writing(char const* word) {
        ASSERT_TRUE(sees(Kind::state_word, word));
        machine->signal_daemon(SIGSTOP);
    }
    void go_on() { machine->signal_daemon(SIGCONT); }

    std::unique_ptr<Player> manager;
};

/// The daemon's driver, which runs one instruction after the other.
class Stepped {
 public:
    explicit Stepped(pid_t daemon) : pid_(daemon) {
        is_held_ = ::ptrace(PTRACE_SEIZE, pid_, nullptr, nullptr) == 0 &&
                   ::ptrace(PTRACE_INTERRUPT, pid_, nullptr, nullptr) == 0 && has_stopped();
    }

    bool is_held() const { return is_held_; }

    /// False when the driver has ended before it was so.
    bool step_until(std::function<bool()> const& is_so) const {
        while (!is_so()) {
            if (::ptrace(PTRACE_SINGLESTEP, pid_, nullptr, nullptr) != 0 || !has_stopped()) {
                return false;
            }
        }
        return true;
    }

 private:
    bool has_stopped() const {
        int status = 0;
        return ::waitpid(pid_, &status, __WALL) == pid_ && WIFSTOPPED(status);
    }

    pid_t pid_;
    bool is_held_;
};

/// The page as the daemon has it this moment.
class Shared_page {
 public:
    Shared_page() {
        base::Descriptor const file(::open(status::k_page_path, O_RDONLY | O_CLOEXEC));
        memory_ = ::mmap(nullptr, sizeof(status::Page), PROT_READ, MAP_SHARED, file.number(), 0);
    }
    ~Shared_page() { ::munmap(memory_, sizeof(status::Page)); }
    Shared_page(Shared_page const&) = delete;
    Shared_page& operator=(Shared_page const&) = delete;

    bool is_mapped() const { return memory_ != MAP_FAILED; }
    status::Page const* operator->() const { return static_cast<status::Page const*>(memory_); }

 private:
    void* memory_;
};

TEST_F(Reasons_story, A_network_that_has_not_said_anything_is_waited_for) {
    settings()["RequestNetworkOnEntryRunState"] = false;  // a request would change its state
    start_with_manager({"--offer-silent", "udpnm"});
    machine->press("n");
    ASSERT_TRUE(is_in("NM Controlled"));
    EXPECT_EQ(why("network-silent"), "the network has not reported its state yet");
}

TEST_F(Reasons_story, A_network_at_rest_has_to_say_so_twice) {
    start_with_manager({"--offer", "udpnm", "--wait-bus-sleep", "3600000"});
    machine->press("n");
    ASSERT_TRUE(is_in("NM Controlled"));
    EXPECT_THAT(why("network-at-rest-once"), AllOf(StartsWith("the network has reported rest once, "),
                                                   HasSubstr("the ECU may sleep when it does so again")));
}

TEST_F(Reasons_story, A_daemon_that_can_not_begin_its_cycle_says_so) {
    build();
    slow_down_next_word();
    start();
    stop_while_writing("startingup");
    EXPECT_THAT(why("no-beat"), HasSubstr("waits for a call, or stands still"));
    go_on();
    ASSERT_TRUE(is_in("Running"));
}

TEST_F(Reasons_story, A_suspend_whose_word_is_not_taken_has_asked_nobody) {
    start_and_run();
    slow_down_next_word();
    machine->press("p");
    stop_while_writing("preparing");
    EXPECT_EQ(why("next-step"), "nobody has been asked yet, and the next step follows");
    go_on();
    ASSERT_TRUE(is_in("PreparedSD"));
}

TEST_F(Reasons_story, A_group_that_has_answered_is_followed_by_the_next_step) {
    start_and_run();
    tell_node({{"do", "reaction"}, {"silent", true}, {"count", 4}});
    machine->press("p");
    ASSERT_TRUE(sees(Kind::log, "Received DCM client completion notification for  kPrepSD . Status:  0"));
    EXPECT_THAT(why("next-step"), StartsWith("all of the diagnostic communication have answered"));
    kill();  // its calls of network management wait for two seconds each
}

TEST_F(Reasons_story, A_daemon_that_is_killed_while_it_writes_leaves_a_half_written_page) {
    start_and_run();
    Shared_page const page;
    ASSERT_TRUE(page.is_mapped());
    Stepped const driver(machine->daemon().pid());
    if (!driver.is_held()) {
        auto const error = errno;
        ASSERT_THAT(error, AnyOf(EPERM, EACCES, ENOSYS)) << std::strerror(error);
        GTEST_SKIP() << "A process may not be traced here: " << std::strerror(error);
    }
    ASSERT_TRUE(driver.step_until([&page] { return page->driver.sequence % 2 == 1; }));
    kill();
    EXPECT_EQ(why("half-written"), "a part of the page was left half-written");
    EXPECT_EQ(told("status").at("state"), "Running") << "and what it says is told";
    machine->start_daemon();
    EXPECT_THAT(why("restarted"), StartsWith("the daemon was restarted once"));
    EXPECT_EQ(told("status").at("troubles").size(), 1U);
}

TEST_F(Reasons_story, A_notification_server_that_failed_has_lost_its_clients) {
    start_and_run();
    auto const radio = client("radio");
    rlimit usual{};
    ASSERT_EQ(::prlimit(machine->daemon().pid(), RLIMIT_NOFILE, nullptr, &usual), 0);
    rlimit const few{3, usual.rlim_max};  // fewer than the server waits for, so that the system refuses the wait
    ASSERT_EQ(::prlimit(machine->daemon().pid(), RLIMIT_NOFILE, &few, nullptr), 0);
    Test_client const newcomer{utilities::get_socket_path()};
    EXPECT_THAT(why("server-failed"),
                AllOf(StartsWith("the notification server failed "), HasSubstr("all clients had to connect again")));
    EXPECT_EQ(told("clients").at("clients"), nlohmann::json::array());
    ASSERT_EQ(::prlimit(machine->daemon().pid(), RLIMIT_NOFILE, &usual, nullptr), 0);
    client("radio");
}

TEST_F(Reasons_story, A_control_file_that_can_not_be_opened_is_told) {
    build();
    machine->hypervisor().command(
        {{"do", "fault"}, {"file", "set_status"}, {"operation", "open"}, {"errno", "EACCES"}});
    start();
    ASSERT_TRUE(is_in("Running"));
    EXPECT_THAT(why("word-failed"), StartsWith("the hypervisor hears no word: its control file could not be opened"));
}

TEST_F(Reasons_story, A_restart_whose_word_is_refused_is_told) {
    start_and_run();
    machine->hypervisor().command({{"do", "fault"},
                                   {"file", "command_request"},
                                   {"operation", "write"},
                                   {"errno", "EIO"},
                                   {"count", 3}});  // the word, the one that takes it back, and the word again
    restart(5);
    EXPECT_EQ(why("restart-failed"), "the word for a restart could not be written once");
}

// Without a device a cycle waits for nothing, and tells more than the log takes.
TEST_F(Reasons_story, A_log_that_lost_messages_is_told) {
    start_and_run();
    machine->hypervisor().command({{"do", "remove_device"}, {"device", "event0"}});
    EXPECT_THAT(why("log-lost"), StartsWith("the log lost "));
    kill();
}

}  // namespace
}  // namespace bench::vehicle
