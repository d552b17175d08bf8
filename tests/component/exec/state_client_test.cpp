#include "ara/exec/state_client.h"

#include "bench/process/player.h"
#include "bench/process/private_bus.h"
#include "bench/process/scratch_directory.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace ara::exec {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// A little more than the bound, for a busy machine.
constexpr auto k_bound = StateClient::k_time_limit + milliseconds(250);

class Execution_management : public testing::Test {
 protected:
    Execution_management() { start_bus(); }
    ~Execution_management() override { ::unsetenv("DBUS_SYSTEM_BUS_ADDRESS"); }

    void start_bus() {
        manager.reset();
        bus.reset();
        bus = std::make_unique<bench::Private_bus>(directory.path().string());
        ::setenv("DBUS_SYSTEM_BUS_ADDRESS", bus->address().c_str(), 1);
        ::unlink(directory.file("notify").c_str());
        manager = std::make_unique<bench::Player>(std::vector<std::string>{SERVICE_MANAGER, directory.file("notify")});
    }

    void set_unit(char const* unit, char const* active) {
        manager->command({{"do", "set_unit"}, {"unit", unit}, {"active", active}});
    }

    bench::Scratch_directory directory;
    std::unique_ptr<bench::Private_bus> bus;
    std::unique_ptr<bench::Player> manager;
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

TEST_F(Execution_management, May_refuse_for_another_reason) {
    manager->command({{"do", "reaction"}, {"error", "org.freedesktop.DBus.Error.AccessDenied"}});
    EXPECT_EQ(sut.SetState("MachineState", "Running"), State_client_result::kRefused);
}

TEST_F(Execution_management, Is_never_asked_for_names_that_are_none) {
    for (auto const* const name : {"", "a-b", "../x", "a b", "a/b", "\xc3\xa4", "a.target\n"}) {
        EXPECT_EQ(sut.SetState("MachineState", name), State_client_result::kUnknownState);
        EXPECT_EQ(sut.SetState(name, "Running"), State_client_result::kUnknownState);
        EXPECT_EQ(sut.GetState(name, state, transition), State_client_result::kUnknownState);
    }
    for (auto const& message : manager->log().messages()) {
        EXPECT_NE(message.value("event", ""), "call");
    }
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

TEST_F(Execution_management, That_does_not_answer_is_given_up_in_time) {
    manager->command({{"do", "reaction"}, {"silent", true}});
    auto const before = steady_clock::now();
    EXPECT_THROW(sut.SetState("MachineState", "Running"), std::runtime_error);
    EXPECT_LT(steady_clock::now() - before, k_bound);
    EXPECT_EQ(sut.SetState("MachineState", "Running"), State_client_result::kSuccess) << "the next request is served";
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
    manager.reset();
    EXPECT_THROW(sut.SetState("MachineState", "Running"), std::runtime_error);
    EXPECT_THROW(sut.GetState("MachineState", state, transition), std::runtime_error);
}

TEST_F(Execution_management, Without_a_bus_is_an_error) {
    ::setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + directory.file("nowhere")).c_str(), 1);
    EXPECT_THROW(sut.SetState("MachineState", "Running"), std::runtime_error);
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

TEST_F(Execution_management, Behind_a_bus_that_never_greets_is_given_up_in_time) {
    auto const path = directory.file("mute");
    int const listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::copy(path.begin(), path.end(), address.sun_path);
    ASSERT_EQ(::bind(listener, reinterpret_cast<sockaddr const*>(&address), sizeof address), 0);
    ASSERT_EQ(::listen(listener, 5), 0);
    ::setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + path).c_str(), 1);
    auto const before = steady_clock::now();
    EXPECT_THROW(sut.SetState("MachineState", "Running"), std::runtime_error);
    EXPECT_LT(steady_clock::now() - before, k_bound);
    ::close(listener);
}

}  // namespace
}  // namespace ara::exec
