// The beats that a supervised process owes its service manager, also one that is late to take them.

#include "ara/phm/supervision_entity.h"

#include "ara/core/service_notification.h"
#include "ara/exec/application_client.h"
#include "support/log_capture.h"
#include "support/notify_socket.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <future>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

using ara::exec::ApplicationClient;
using ara::exec::ApplicationState;
using std::chrono::milliseconds;
using std::chrono::steady_clock;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(Supervision_entity, Reports_each_checkpoint_as_one_watchdog_beat) {
    test_support::Notify_socket const service_manager;
    ara::phm::Phm_client const client("ap_statemanager");
    ara::phm::SupervisionEntity sut(client);
    sut.ReportCheckpoint(1, 1);
    std::this_thread::sleep_for(ara::phm::SupervisionEntity::k_shortest_interval);  // the time that is meant
    sut.ReportCheckpoint(1, 1);
    EXPECT_THAT(service_manager.received(), ElementsAre("WATCHDOG=1", "WATCHDOG=1"));
}

TEST(Supervision_entity, Finds_a_service_manager_that_was_started_anew_with_the_socket_that_it_has) {
    ara::phm::Phm_client const client("");
    ara::phm::SupervisionEntity sut(client);
    for (int start = 0; start < 3; ++start) {
        test_support::Notify_socket const service_manager;
        std::this_thread::sleep_for(ara::phm::SupervisionEntity::k_shortest_interval);  // the time that is meant
        sut.ReportCheckpoint(1, 1);
        EXPECT_THAT(service_manager.received(), ElementsAre("WATCHDOG=1"));
    }
}

TEST(Supervision_entity, Does_not_flood_the_service_manager) {
    test_support::Notify_socket const service_manager;
    ara::phm::Phm_client const client("");
    ara::phm::SupervisionEntity sut(client);
    auto const begin = steady_clock::now();
    for (int i = 0; i < 10'000; ++i) {
        sut.ReportCheckpoint(1, 1);
    }
    auto const room = (steady_clock::now() - begin) / ara::phm::SupervisionEntity::k_shortest_interval + 1;
    EXPECT_THAT(service_manager.received().size(),
                testing::AllOf(testing::Ge(1U), testing::Le(static_cast<std::size_t>(room))));
}

TEST(Supervision_entity, Reports_to_an_abstract_name_too) {
    auto const name = std::string("@notified--") + std::to_string(::getpid());
    int const service_manager = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::copy(name.begin() + 1, name.end(), address.sun_path + 1);
    auto const size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size());
    ASSERT_EQ(::bind(service_manager, reinterpret_cast<sockaddr const*>(&address), size), 0);
    ::setenv("NOTIFY_SOCKET", name.c_str(), 1);
    ara::phm::Phm_client const client("");
    ara::phm::SupervisionEntity sut(client);
    sut.ReportCheckpoint(1, 1);
    ::unsetenv("NOTIFY_SOCKET");
    std::array<char, 32> line{};
    auto const count = ::recv(service_manager, line.data(), line.size(), 0);
    EXPECT_EQ(std::string(line.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0))), "WATCHDOG=1");
    ::close(service_manager);
}

/// A service manager that has stopped reading: its queue is full.
class Busy_service_manager : public testing::Test {
 protected:
    Busy_service_manager() {
        ara::core::notify_service_manager("STATUS=first");
        int count = 0;
        try {
            for (; count < 10'000; ++count) {
                ara::core::notify_service_manager("STATUS=more");
            }
        } catch (std::system_error const& error) {
            EXPECT_EQ(error.code().value(), EAGAIN);
        }
        EXPECT_LT(count, 10'000);
    }
    ~Busy_service_manager() override { ::unsetenv("WATCHDOG_USEC"); }

    /// What has arrived besides what filled the queue.
    std::vector<std::string> reports() const {
        auto lines = service_manager.received();
        auto const fills = [](std::string const& line) { return line.rfind("STATUS=", 0) == 0; };
        lines.erase(std::remove_if(lines.begin(), lines.end(), fills), lines.end());
        return lines;
    }

    /// How long reports were refused: at least until `failed`, and borne at least for `borne`, however late this
    /// process was in between.
    struct Refused {
        milliseconds borne;   ///< from behind the first report to the last one that did not throw
        milliseconds failed;  ///< from before the first report to behind the one that threw, or the limit
    };

    /// Reports a checkpoint every 10 ms until that throws.
    Refused report_until_it_fails(milliseconds limit) {
        auto const begin = steady_clock::now();
        auto behind_first = begin;
        auto last_borne = begin;
        try {
            for (auto now = begin; now - begin < limit; now = steady_clock::now()) {
                entity.ReportCheckpoint(1, 1);
                behind_first = now == begin ? steady_clock::now() : behind_first;
                last_borne = now;
                std::this_thread::sleep_for(milliseconds(10));
            }
        } catch (std::system_error const& error) {
            EXPECT_EQ(error.code().value(), EAGAIN);
        }
        return {std::chrono::duration_cast<milliseconds>(last_borne - behind_first),
                std::chrono::duration_cast<milliseconds>(steady_clock::now() - begin)};
    }

    test_support::Notify_socket service_manager;
    ara::phm::Phm_client client{""};
    ara::phm::SupervisionEntity entity{client};
    ApplicationClient application;
};

TEST_F(Busy_service_manager, Is_neither_waited_for_nor_given_up) {
    auto const begin = steady_clock::now();
    for (int i = 0; i < 100; ++i) {
        EXPECT_NO_THROW(entity.ReportCheckpoint(1, 1));
    }
    EXPECT_LT(steady_clock::now() - begin, 100 * ara::core::k_notification_time_limit);
    EXPECT_THAT(reports(), IsEmpty());
    entity.ReportCheckpoint(1, 1);
    EXPECT_THAT(reports(), ElementsAre("WATCHDOG=1")) << "the newest one went out";
}

TEST_F(Busy_service_manager, Has_failed_after_half_of_the_watchdogs_time) {
    ::setenv("WATCHDOG_USEC", "1200000", 1);
    auto const refused = report_until_it_fails(milliseconds(5000));
    EXPECT_LT(refused.borne, milliseconds(600));
    EXPECT_GE(refused.failed, milliseconds(600));
}

TEST_F(Busy_service_manager, Has_not_failed_when_a_report_went_out_in_between) {
    // Half of it is less than the three times together, and more than one of them with the second that a stall counts
    // for.
    ::setenv("WATCHDOG_USEC", "4000000", 1);
    for (int i = 0; i < 3; ++i) {
        EXPECT_THAT(report_until_it_fails(milliseconds(700)).failed, testing::Ge(milliseconds(700)));
        service_manager.received();
        entity.ReportCheckpoint(1, 1);
        for (int filled = 0; filled < 1000; ++filled) {
            entity.ReportCheckpoint(1, 1);
            std::this_thread::sleep_for(filled < 20 ? ara::phm::SupervisionEntity::k_shortest_interval
                                                    : milliseconds(0));
        }
    }
}

// Between two tries the whole machine may have stood still.
TEST_F(Busy_service_manager, Has_not_failed_because_the_process_stood_still) {
    ::setenv("WATCHDOG_USEC", "2400000", 1);
    entity.ReportCheckpoint(1, 1);
    std::this_thread::sleep_for(milliseconds(1500));  // the time that is meant
    EXPECT_NO_THROW(entity.ReportCheckpoint(1, 1));
}

TEST_F(Busy_service_manager, Is_told_that_the_process_is_ready_as_soon_as_it_can_be) {
    test_support::Log_capture log;
    ::setenv("WATCHDOG_USEC", "200000", 1);
    auto const begin = steady_clock::now();
    for (int i = 0; i < 100; ++i) {
        application.ReportApplicationState(ApplicationState::kRunning);
    }
    EXPECT_LT(steady_clock::now() - begin, 100 * ara::core::k_notification_time_limit);
    EXPECT_THAT(report_until_it_fails(milliseconds(300)).failed, testing::Ge(milliseconds(300)))
        << "nobody waits for beats before that";
    EXPECT_THAT(reports(), IsEmpty());
    entity.ReportCheckpoint(1, 1);
    EXPECT_THAT(reports(), ElementsAre("READY=1", "WATCHDOG=1"));
    EXPECT_THAT(log.messages(), IsEmpty());
}

TEST_F(Busy_service_manager, Is_given_up_in_time_also_when_signals_interrupt) {
    auto const before = std::signal(SIGALRM, [](int) {});
    itimerval const often{{0, 20'000}, {0, 20'000}};
    ::setitimer(ITIMER_REAL, &often, nullptr);
    std::promise<void> given_up;
    std::thread reader([this, end = given_up.get_future()] {
        if (end.wait_for(std::chrono::seconds(5)) == std::future_status::timeout) {
            service_manager.received();
        }
    });
    EXPECT_THROW(ara::core::notify_service_manager("STOPPING=1"), std::system_error);
    given_up.set_value();
    itimerval const never{};
    ::setitimer(ITIMER_REAL, &never, nullptr);
    std::signal(SIGALRM, before);
    reader.join();
}

TEST(Supervision_entity, Owes_a_report_for_which_the_process_has_no_descriptor) {
    test_support::Notify_socket const service_manager;
    ara::phm::Phm_client const client("");
    ara::phm::SupervisionEntity sut(client);
    rlimit before{};
    ::getrlimit(RLIMIT_NOFILE, &before);
    rlimit const none{0, before.rlim_max};
    ::setrlimit(RLIMIT_NOFILE, &none);
    EXPECT_NO_THROW(sut.ReportCheckpoint(1, 1));
    ::setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_THAT(service_manager.received(), IsEmpty());
    sut.ReportCheckpoint(1, 1);
    EXPECT_THAT(service_manager.received(), ElementsAre("WATCHDOG=1"));
}

TEST(Supervision_entity, Has_failed_at_once_when_the_service_manager_is_gone) {
    ara::phm::Phm_client const client("");
    ara::phm::SupervisionEntity sut(client);
    std::string path;
    {
        test_support::Notify_socket const service_manager;
        path = ::getenv("NOTIFY_SOCKET");
    }
    ::setenv("NOTIFY_SOCKET", path.c_str(), 1);
    EXPECT_THROW(sut.ReportCheckpoint(1, 1), std::system_error) << "its socket is gone";
    ::unsetenv("NOTIFY_SOCKET");
}

TEST(Supervision_entity, Succeeds_where_nobody_supervises) {
    ::unsetenv("NOTIFY_SOCKET");
    ara::phm::Phm_client const client("");
    ara::phm::SupervisionEntity sut(client);
    EXPECT_NO_THROW(sut.ReportCheckpoint(1, 1));
}

TEST(Supervision_entity, Throws_when_a_report_can_not_be_delivered) {
    ara::phm::Phm_client const client("");
    ara::phm::SupervisionEntity sut(client);
    for (auto const* const name : {"/nowhere/notify", "/dev/null/notify", "", "@"}) {
        ::setenv("NOTIFY_SOCKET", name, 1);
        EXPECT_THROW(sut.ReportCheckpoint(1, 1), std::runtime_error) << name;
    }
    ::setenv("NOTIFY_SOCKET", std::string(200, 'x').c_str(), 1);
    EXPECT_THROW(sut.ReportCheckpoint(1, 1), std::runtime_error);
    ::unsetenv("NOTIFY_SOCKET");
}

}  // namespace
