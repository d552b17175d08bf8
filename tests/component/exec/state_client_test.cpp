#include "ara/exec/state_client.h"

#include "private_execution_management.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>

#include <gmock/gmock.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace ara::exec {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;
using testing::ThrowsMessage;

// And what a busy machine may add; the bus itself would wait for 25 s.
constexpr auto k_bound = StateClient::k_time_limit + milliseconds(10'000);

class Execution_management : public Private_execution_management {
 protected:
    StateClient sut;
    std::string state{"untouched"};
    Function_group_state_transition transition{Function_group_state_transition::kInTransition};
};

TEST_F(Execution_management, Is_asked_to_start_the_target_of_the_state) {
    EXPECT_EQ(sut.SetState("MachineState", "Running"), State_client_result::kSuccess);
    manager->await_event("call",
                         {{"method", "StartUnit"}, {"unit", "MachineState-Running.target"}, {"mode", "replace"}});
    manager->await_event("unit", {{"unit", "MachineState-Running.target"}, {"active", "active"}});
}

TEST_F(Execution_management, Refuses_a_state_that_it_does_not_know) {
    EXPECT_EQ(sut.SetState("MachineState", "Flying"), State_client_result::kUnknownState);
}

TEST_F(Execution_management, May_refuse_for_another_reason_which_is_no_failure) {
    for (auto const* const reason : {"org.freedesktop.systemd1.UnitMasked", "org.freedesktop.DBus.Error.AccessDenied",
                                     "org.freedesktop.DBus.Error.InvalidArgs", "org.freedesktop.DBus.Error.AuthFailed",
                                     "org.freedesktop.DBus.Error.InteractiveAuthorizationRequired"}) {
        manager->command({{"do", "reaction"}, {"error", reason}});
        EXPECT_EQ(sut.SetState("MachineState", "Running"), State_client_result::kRefused) << reason;
    }
    for (auto const* const failure : {"org.freedesktop.DBus.Error.Failed", "org.freedesktop.DBus.Error.NoMemory"}) {
        manager->command({{"do", "reaction"}, {"error", failure}});
        EXPECT_THROW(sut.SetState("MachineState", "Running"), std::runtime_error) << failure;
    }
}

TEST_F(Execution_management, Is_never_asked_for_names_that_are_none) {
    std::string const too_long(101, 'a');
    for (auto const* const name : {"", "a-b", "../x", "a b", "a/b", "\xc3\xa4", "a.target\n", too_long.c_str()}) {
        EXPECT_EQ(sut.SetState("MachineState", name), State_client_result::kUnknownState);
        EXPECT_EQ(sut.SetState(name, "Running"), State_client_result::kUnknownState);
        EXPECT_EQ(sut.GetState(name, state, transition), State_client_result::kUnknownState);
    }
    for (auto const& message : manager->log().messages()) {
        EXPECT_NE(message.value("event", ""), "call");
    }
}

TEST_F(Execution_management, Is_asked_for_names_of_up_to_a_hundred_characters_letters_digits_and_underscores) {
    std::string const name = "_Z9" + std::string(97, 'a');
    EXPECT_EQ(sut.SetState(name, name), State_client_result::kUnknownState);
    manager->await_event("call", {{"method", "StartUnit"}, {"unit", name + "-" + name + ".target"}});
}

TEST_F(Execution_management, Tells_the_state_that_has_been_reached) {
    ASSERT_EQ(sut.SetState("MachineState", "Running"), State_client_result::kSuccess);
    manager->await_event("unit", {{"unit", "MachineState-Running.target"}, {"active", "active"}});
    EXPECT_EQ(sut.GetState("MachineState", state, transition), State_client_result::kSuccess);
    EXPECT_EQ(state, "Running");
    EXPECT_EQ(transition, Function_group_state_transition::kReached);
}

TEST_F(Execution_management, Tells_the_state_that_is_on_its_way) {
    set_unit("MachineState-Shutdown.target", "activating");
    EXPECT_EQ(sut.GetState("MachineState", state, transition), State_client_result::kSuccess);
    EXPECT_EQ(state, "Shutdown");
    EXPECT_EQ(transition, Function_group_state_transition::kInTransition);
}

TEST_F(Execution_management, Knows_no_state_of_a_group_without_an_active_target) {
    set_unit("MachineState-Startup.target", "inactive");
    EXPECT_EQ(sut.GetState("MachineState", state, transition), State_client_result::kUnknownState);
    EXPECT_EQ(sut.GetState("AnotherGroup", state, transition), State_client_result::kUnknownState);
    EXPECT_EQ(state, "untouched");
}

TEST_F(Execution_management, Does_not_take_a_target_without_a_name_for_a_state) {
    set_unit("MachineState-Startup.target", "inactive");
    set_unit("MachineState-.target", "active");
    EXPECT_EQ(sut.GetState("MachineState", state, transition), State_client_result::kUnknownState);
    set_unit("MachineState-A.target", "active");
    EXPECT_EQ(sut.GetState("MachineState", state, transition), State_client_result::kSuccess);
    EXPECT_EQ(state, "A");
}

TEST_F(Execution_management, May_refuse_to_tell_the_state) {
    manager->command(
        {{"do", "reaction"}, {"method", "ListUnitsByPatterns"}, {"error", "org.freedesktop.DBus.Error.AccessDenied"}});
    EXPECT_EQ(sut.GetState("MachineState", state, transition), State_client_result::kRefused);
    EXPECT_EQ(state, "untouched");
    EXPECT_EQ(transition, Function_group_state_transition::kInTransition);
}

TEST_F(Execution_management, That_does_not_answer_is_given_up_in_time) {
    manager->command({{"do", "reaction"}, {"silent", true}});
    auto const before = steady_clock::now();
    EXPECT_THAT([this] { sut.SetState("MachineState", "Running"); },
                ThrowsMessage<std::runtime_error>("no answer from execution management in time"));
    EXPECT_LT(steady_clock::now() - before, k_bound);
    EXPECT_EQ(sut.SetState("MachineState", "Running"), State_client_result::kSuccess) << "the next request is served";
}

TEST_F(Execution_management, Of_a_machine_that_boots_may_take_a_while) {
    manager->command({{"do", "reaction"}, {"delay_ms", 800}});
    EXPECT_EQ(sut.SetState("MachineState", "Running"), State_client_result::kSuccess);
}

// The service manager asks the bus who the caller is before it does what was asked for.
TEST_F(Execution_management, That_answers_late_still_finds_its_caller_on_the_bus) {
    manager->command({{"do", "reaction"}, {"silent", true}});
    EXPECT_THROW(sut.SetState("MachineState", "Running"), std::runtime_error);
    auto const late = manager->await_event("call", {{"unit", "MachineState-Running.target"}});
    ASSERT_EQ(sut.SetState("MachineState", "Shutdown"), State_client_result::kSuccess);
    auto const next = manager->await_event("call", {{"unit", "MachineState-Shutdown.target"}});
    EXPECT_EQ(late.at("sender"), next.at("sender"));
}

TEST_F(Execution_management, That_is_not_on_the_bus_is_an_error) {
    end_manager();
    auto const names_who_is_missing = ThrowsMessage<std::runtime_error>(
        AllOf(StartsWith("no answer from execution management: "), HasSubstr("org.freedesktop.systemd1")));
    EXPECT_THAT([this] { sut.SetState("MachineState", "Running"); }, names_who_is_missing);
    EXPECT_THAT([this] { sut.GetState("MachineState", state, transition); }, names_who_is_missing);
}

TEST_F(Execution_management, Without_a_bus_is_an_error) {
    ::setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + directory.file("nowhere")).c_str(), 1);
    EXPECT_THAT([] { StateClient().SetState("MachineState", "Running"); },
                ThrowsMessage<std::runtime_error>("no connection to the system bus: No such file or directory"));
}

TEST_F(Execution_management, Is_found_again_after_the_bus_was_restarted) {
    ASSERT_EQ(sut.SetState("MachineState", "Running"), State_client_result::kSuccess);
    start_bus();
    EXPECT_EQ(sut.SetState("MachineState", "Shutdown"), State_client_result::kSuccess);
    manager->await_event("call", {{"unit", "MachineState-Shutdown.target"}});
}

TEST_F(Execution_management, Behind_a_stopped_bus_is_given_up_in_time) {
    ASSERT_EQ(sut.SetState("MachineState", "Running"), State_client_result::kSuccess);
    bus->process().signal(SIGSTOP);
    auto const before = steady_clock::now();
    EXPECT_THROW(sut.SetState("MachineState", "Shutdown"), std::runtime_error);
    EXPECT_LT(steady_clock::now() - before, k_bound);
    bus->process().signal(SIGCONT);
    EXPECT_EQ(sut.SetState("MachineState", "Shutdown"), State_client_result::kSuccess);
}

/// Something that listens where the bus should and speaks no word of its protocol.
class No_bus : public Execution_management {
 protected:
    No_bus() { ::setenv("WATCHDOG_USEC", "1000000", 1); }
    ~No_bus() override {
        ::unsetenv("WATCHDOG_USEC");
        ::close(listener);
    }

    void listen() {
        auto const path = directory.file("mute");
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::copy(path.begin(), path.end(), address.sun_path);
        ASSERT_EQ(::bind(listener, reinterpret_cast<sockaddr const*>(&address), sizeof address), 0);
        ASSERT_EQ(::listen(listener, 5), 0);
        ::setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + path).c_str(), 1);
    }

    int const listener{::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)};
};

TEST_F(No_bus, That_never_greets_is_given_up_in_time) {
    listen();
    auto before = steady_clock::now();
    StateClient client;
    EXPECT_LT(steady_clock::now() - before, StateClient::k_time_limit / 2) << "it is no request's turn yet";
    before = steady_clock::now();
    EXPECT_THAT([&client] { client.SetState("MachineState", "Running"); },
                ThrowsMessage<std::runtime_error>("no connection to the system bus: Connection timed out"));
    EXPECT_LT(steady_clock::now() - before, k_bound);
}

TEST_F(No_bus, That_hangs_up_is_an_error) {
    listen();
    std::thread doorman([this] {
        for (int visitor = 0; visitor < 2; ++visitor) {
            ::close(::accept(listener, nullptr, nullptr));
        }
    });
    StateClient client;
    EXPECT_THAT([&client] { client.SetState("MachineState", "Running"); },
                ThrowsMessage<std::runtime_error>(StartsWith("no connection to the system bus: ")));
    doorman.join();
}

}  // namespace
}  // namespace ara::exec
