// A service manager that answers after the request was given up: the end of the client waits for it, since the manager
// refuses a caller that has gone.

#include "ara/exec/application_client.h"
#include "ara/exec/state_client.h"
#include "private_execution_management.h"
#include "support/notify_socket.h"

#include <chrono>
#include <csignal>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

#include <gmock/gmock.h>
#include <stdlib.h>
#include <sys/time.h>
#include <unistd.h>

namespace ara::exec {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using testing::AllOf;
using testing::Ge;
using testing::HasSubstr;
using testing::Lt;
using testing::ThrowsMessage;

constexpr auto k_busy = milliseconds(1000);  // what a busy machine may add

class Late_execution_management : public Private_execution_management {
 protected:
    Late_execution_management() { ::setenv("WATCHDOG_USEC", "4000000", 1); }
    ~Late_execution_management() override {
        sut.reset();
        ::unsetenv("WATCHDOG_USEC");
    }

    void request() {
        EXPECT_THAT([this] { sut->SetState("MachineState", "Shutdown"); },
                    ThrowsMessage<std::runtime_error>(HasSubstr(failure)));
    }

    /// Time that the client's end took.
    milliseconds end() {
        auto const begin = steady_clock::now();
        sut.reset();
        return std::chrono::duration_cast<milliseconds>(steady_clock::now() - begin);
    }

    /// The bus stands still for so long from now on.
    std::thread stop_bus(milliseconds time) {
        bus->process().signal(SIGSTOP);
        return std::thread([this, time] {
            std::this_thread::sleep_for(time);
            bus->process().signal(SIGCONT);
        });
    }

    std::string failure{"no answer from execution management in time"};
    std::unique_ptr<StateClient> sut{std::make_unique<StateClient>()};
};

TEST_F(Late_execution_management, Is_waited_for_by_the_end_of_its_client) {
    manager->command({{"do", "reaction"}, {"delay_ms", 1500}});
    request();
    testing::internal::CaptureStderr();
    EXPECT_THAT(end(), AllOf(Ge(milliseconds(450)), Lt(milliseconds(500) + k_busy)));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    manager->await_event("unit", {{"unit", "MachineState-Shutdown.target"}, {"active", "active"}});
}

TEST_F(Late_execution_management, Still_finds_its_caller_when_the_bus_was_late) {
    auto late = stop_bus(milliseconds(1500));
    request();
    end();
    late.join();
    manager->await_event("unit", {{"unit", "MachineState-Shutdown.target"}, {"active", "active"}});
}

TEST_F(Late_execution_management, Gets_a_request_that_was_made_before_the_bus_greeted) {
    sut.reset();
    auto late = stop_bus(milliseconds(1500));
    sut = std::make_unique<StateClient>();
    failure = "no connection to the system bus: Connection timed out";
    request();
    end();
    late.join();
    manager->await_event("unit", {{"unit", "MachineState-Shutdown.target"}, {"active", "active"}});
}

TEST_F(Late_execution_management, That_refuses_is_told_of_once) {
    manager->command({{"do", "reaction"}, {"delay_ms", 1200}, {"error", "org.freedesktop.DBus.Error.AccessDenied"}});
    request();
    testing::internal::CaptureStderr();
    end();
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                testing::StartsWith("StartUnit MachineState-Shutdown.target: refused: "));
}

TEST_F(Late_execution_management, Is_waited_for_half_of_the_watchdogs_time_at_most) {
    ::setenv("WATCHDOG_USEC", "2400000", 1);
    manager->command({{"do", "reaction"}, {"silent", true}});
    request();
    EXPECT_THAT(end(), AllOf(Ge(milliseconds(1150)), Lt(milliseconds(1200) + k_busy)));
}

TEST_F(Late_execution_management, Is_waited_for_all_the_time_once_the_process_has_said_that_it_stops) {
    test_support::Notify_socket const service_manager;
    ApplicationClient().ReportApplicationState(ApplicationState::kTerminating);
    manager->command({{"do", "reaction"}, {"delay_ms", 3000}});
    request();
    testing::internal::CaptureStderr();
    EXPECT_THAT(end(), Ge(milliseconds(1900)));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    ApplicationClient().ReportApplicationState(ApplicationState::kRunning);
}

// A freeze of this process and of the bus, which goes on a moment later.
TEST_F(Late_execution_management, Is_waited_for_after_both_stood_still_for_longer_than_the_wait) {
    bus->process().signal(SIGSTOP);
    request();
    auto const self = std::to_string(::getpid());
    auto const its = std::to_string(bus->process().pid());
    bench::Child_process const freezer(
        {"sh", "-c",
         "sleep 0.3; kill -STOP " + self + "; sleep 2.5; kill -CONT " + self + "; sleep 0.3; kill -CONT " + its},
        {});
    EXPECT_THAT(end(), Ge(milliseconds(2700)));
    manager->await_event("unit", {{"unit", "MachineState-Shutdown.target"}, {"active", "active"}});
}

TEST_F(Late_execution_management, Costs_nothing_once_it_has_answered) {
    manager->command({{"do", "reaction"}, {"silent", true}});
    request();
    ASSERT_EQ(sut->SetState("MachineState", "Running"), State_client_result::kSuccess);
    EXPECT_LT(end(), k_busy);
}

TEST_F(Late_execution_management, Costs_nothing_when_its_bus_has_gone) {
    manager->command({{"do", "reaction"}, {"silent", true}});
    request();
    bus.reset();
    manager->process().expect(EXIT_FAILURE);
    EXPECT_LT(end(), k_busy);
}

TEST_F(Late_execution_management, Costs_nothing_where_there_is_no_bus) {
    ::setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + directory.file("nowhere")).c_str(), 1);
    auto const begin = steady_clock::now();
    sut = std::make_unique<StateClient>();
    failure = "no connection to the system bus: No such file or directory";
    request();
    end();
    EXPECT_LT(steady_clock::now() - begin, StateClient::k_time_limit);
}

TEST_F(Late_execution_management, Has_its_bus_connected_before_the_first_request) {
    bus->process().signal(SIGSTOP);
    request();  // fails for want of an answer, not of a connection
    bus->process().signal(SIGCONT);
}

TEST_F(Late_execution_management, Is_asked_once_by_a_caller_that_signals_interrupt) {
    auto const before = std::signal(SIGALRM, [](int) {});
    itimerval const often{{0, 20'000}, {0, 20'000}};
    ::setitimer(ITIMER_REAL, &often, nullptr);
    manager->command({{"do", "reaction"}, {"silent", true}});
    auto const begin = steady_clock::now();
    request();
    EXPECT_GE(steady_clock::now() - begin, StateClient::k_time_limit - milliseconds(5));
    ::setenv("WATCHDOG_USEC", "200000", 1);  // the end waits as briefly
    itimerval const never{};
    ::setitimer(ITIMER_REAL, &never, nullptr);
    std::signal(SIGALRM, before);
}

}  // namespace
}  // namespace ara::exec
