// What a process tells its service manager of itself, and the watchdog that is set for it.

#include "ara/core/service_notification.h"

#include "ara/exec/application_client.h"
#include "support/log_capture.h"
#include "support/notify_socket.h"
#include "support/open_descriptors.h"

#include <cerrno>
#include <chrono>
#include <functional>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

#include <gmock/gmock.h>
#include <poll.h>
#include <stdlib.h>
#include <unistd.h>

namespace {

std::function<int()> as_it_waits;  // called by the next one that waits for room, instead of it
}

/// `poll` of this program.
extern "C" int own_poll(pollfd* descriptors, nfds_t count, int milliseconds) __asm__("poll");
extern "C" int own_poll(pollfd* descriptors, nfds_t count, int milliseconds) {
    bool const is_for_room = count == 1 && descriptors->events == POLLOUT;
    if (auto const act = is_for_room ? std::exchange(as_it_waits, {}) : nullptr) {
        return act();
    }
    timespec const time{milliseconds / 1000, milliseconds % 1000 * 1'000'000L};
    return ::ppoll(descriptors, count, milliseconds < 0 ? nullptr : &time, nullptr);
}

namespace {

using ara::exec::ApplicationClient;
using ara::exec::ApplicationState;
using ara::log::LogLevel;
using std::chrono::milliseconds;
using std::chrono::steady_clock;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(Application_client, Reports_running_and_terminating) {
    test_support::Notify_socket const service_manager;
    ApplicationClient sut;
    sut.ReportApplicationState(ApplicationState::kRunning);
    sut.ReportApplicationState(ApplicationState::kTerminating);
    EXPECT_THAT(service_manager.received(), ElementsAre("READY=1", "STOPPING=1"));
}

TEST(Application_client, Logs_a_report_that_can_not_be_delivered) {
    test_support::Log_capture log;
    ::setenv("NOTIFY_SOCKET", "/nowhere/notify", 1);
    ApplicationClient sut;
    sut.ReportApplicationState(ApplicationState::kRunning);
    ::unsetenv("NOTIFY_SOCKET");
    auto const messages = log.messages();
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0].level, LogLevel::kError);
    ASSERT_EQ(messages[0].arguments.size(), 2U);
    EXPECT_EQ(messages[0].arguments[0], test_support::Log_argument(std::string("Application state not reported: ")));
    EXPECT_THAT(std::get<std::string>(messages[0].arguments[1]), testing::HasSubstr("No such file or directory"));
}

struct Watchdog_variables {
    char const* name;
    std::string microseconds;
    std::string process;  ///< WATCHDOG_PID, unset when empty
    std::optional<std::chrono::microseconds> time;

    friend std::ostream& operator<<(std::ostream& out, Watchdog_variables const& variables) {
        return out << variables.name;
    }
};

class Watchdog_time : public testing::TestWithParam<Watchdog_variables> {
 protected:
    Watchdog_time() {
        ::setenv("WATCHDOG_USEC", GetParam().microseconds.c_str(), 1);
        if (!GetParam().process.empty()) {
            ::setenv("WATCHDOG_PID", GetParam().process.c_str(), 1);
        }
    }
    ~Watchdog_time() override {
        ::unsetenv("WATCHDOG_USEC");
        ::unsetenv("WATCHDOG_PID");
    }
};

TEST_P(Watchdog_time, Is_that_of_the_process_that_it_is_meant_for) {
    EXPECT_EQ(ara::core::watchdog_time(), GetParam().time);
}

INSTANTIATE_TEST_SUITE_P(
    Variables, Watchdog_time,
    testing::Values(Watchdog_variables{"For_whoever_reads_it", "2000000", "", std::chrono::seconds(2)},
                    Watchdog_variables{"For_this_process", "2000000", std::to_string(::getpid()),
                                       std::chrono::seconds(2)},
                    Watchdog_variables{"For_its_parent", "2000000", std::to_string(::getppid()), std::nullopt},
                    Watchdog_variables{"For_no_process", "2000000", "this one", std::nullopt},
                    Watchdog_variables{"Cut_short", "2000000", std::to_string(::getpid()) + "x", std::nullopt},
                    Watchdog_variables{"No_time", "0", "", std::nullopt},
                    Watchdog_variables{"Less_than_no_time", "-1", "", std::nullopt},
                    Watchdog_variables{"No_number", "soon", "", std::nullopt}),
    [](auto const& instance) { return std::string(instance.param.name); });

TEST(Service_notification, Ends_the_watchdog_with_the_report_that_the_process_stops) {
    test_support::Notify_socket const service_manager;
    ::setenv("WATCHDOG_USEC", "2000000", 1);
    ApplicationClient sut;
    sut.ReportApplicationState(ApplicationState::kTerminating);
    EXPECT_EQ(ara::core::watchdog_time(), std::nullopt);
    sut.ReportApplicationState(ApplicationState::kRunning);
    EXPECT_EQ(ara::core::watchdog_time(), std::chrono::seconds(2)) << "and it begins with the other one";
    ::unsetenv("WATCHDOG_USEC");
}

TEST(Service_notification, Leaves_the_watchdog_where_nobody_heard_that_the_process_stops) {
    test_support::Log_capture log;
    ::setenv("NOTIFY_SOCKET", "/nowhere/notify", 1);
    ::setenv("WATCHDOG_USEC", "2000000", 1);
    ApplicationClient().ReportApplicationState(ApplicationState::kTerminating);
    EXPECT_EQ(ara::core::watchdog_time(), std::chrono::seconds(2));
    ::unsetenv("NOTIFY_SOCKET");
    ::unsetenv("WATCHDOG_USEC");
}

TEST(Service_notification, Knows_a_name_that_is_none) {
    constexpr std::size_t k_longest = sizeof sockaddr_un::sun_path - 1;
    struct Row {
        std::string name;
        int error;
    };
    for (auto const& [name, error] : {Row{"", EINVAL}, Row{"/" + std::string(k_longest - 1, 'n'), ENOENT},
                                      Row{"/" + std::string(k_longest, 'n'), EINVAL},
                                      Row{"/" + std::string(k_longest + 1, 'n'), EINVAL}, Row{"@none", ECONNREFUSED}}) {
        ::setenv("NOTIFY_SOCKET", name.c_str(), 1);
        EXPECT_EQ(ara::core::Beats().send().value(), error) << name;
    }
    ::unsetenv("NOTIFY_SOCKET");
}

TEST(Service_notification, Beats_as_soon_as_there_is_a_descriptor) {
    test_support::Notify_socket const service_manager;
    ara::core::Beats sut;
    {
        test_support::Descriptors_left const none(0);
        EXPECT_EQ(sut.send().value(), EMFILE);
    }
    EXPECT_FALSE(sut.send());
    EXPECT_THAT(service_manager.received(), ElementsAre("WATCHDOG=1"));
}

TEST(Service_notification, Gives_up_in_time_when_the_queue_of_the_service_manager_stays_full) {
    test_support::Notify_socket const service_manager;
    auto before = steady_clock::now();
    auto const send_until_full = [&before] {
        for (int count = 0; count < 100'000; ++count) {
            before = steady_clock::now();
            ara::core::notify_service_manager("WATCHDOG=1");
        }
    };
    EXPECT_THROW(send_until_full(), std::runtime_error);
    auto const taken = steady_clock::now() - before;
    EXPECT_GE(taken, ara::core::k_notification_time_limit - milliseconds(5));
    EXPECT_LT(taken, ara::core::k_notification_time_limit + milliseconds(5000));
    EXPECT_THAT(service_manager.received(), testing::Not(IsEmpty()));
    EXPECT_NO_THROW(ara::core::notify_service_manager("WATCHDOG=1"));
}

/// A service manager whose queue is full.
class Full_service_manager : public testing::Test {
 protected:
    Full_service_manager() {
        ara::core::Beats beats;
        while (!beats.send()) {
        }
    }

    std::optional<test_support::Notify_socket> service_manager_{std::in_place};
};

TEST_F(Full_service_manager, Is_not_waited_for_when_it_goes) {
    as_it_waits = [this] {
        service_manager_.reset();
        return 1;
    };
    try {
        ara::core::notify_service_manager("STOPPING=1");
        ADD_FAILURE() << "nobody has heard it";
    } catch (std::system_error const& error) {
        EXPECT_EQ(error.code().value(), ECONNREFUSED);
    }
}

TEST_F(Full_service_manager, Is_told_after_an_interruption) {
    as_it_waits = [this] {
        service_manager_->received();
        errno = EINTR;
        return -1;
    };
    EXPECT_NO_THROW(ara::core::notify_service_manager("STOPPING=1"));
    EXPECT_THAT(service_manager_->received(), ElementsAre("STOPPING=1"));
}

}  // namespace
