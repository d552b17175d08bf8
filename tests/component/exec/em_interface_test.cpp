// The adapter on a real execution management; what it does with each answer is told by its unit tests.

#include "statemanager/em/em_interface.h"

#include "private_execution_management.h"
#include "support/log_capture.h"

#include <gmock/gmock.h>

namespace ximo::ap::statemanager {
namespace {

using ara::exec::Function_group_state_transition;
using ara::exec::State_client_result;
using ara::log::LogLevel;
using test_support::logged;
using testing::ElementsAre;
using testing::IsEmpty;

class Em_adapter_on_a_bus : public Private_execution_management {
 protected:
    test_support::Log_capture log;
    Em_interface sut;
};

TEST_F(Em_adapter_on_a_bus, Has_the_targets_of_the_machine_state_started) {
    sut.request_running();
    manager->await_event("call", {{"method", "StartUnit"}, {"unit", "MachineState-Running.target"}});
    sut.request_shutdown();
    manager->await_event("call", {{"method", "StartUnit"}, {"unit", "MachineState-Shutdown.target"}});
    EXPECT_THAT(log.at_least(LogLevel::kError), IsEmpty());
}

TEST_F(Em_adapter_on_a_bus, Hands_requests_and_results_through) {
    EXPECT_EQ(sut.StateClient_SetState("MachineState", "Flying"), State_client_result::kUnknownState);
    set_unit("Windows-Open.target", "active");
    std::string state;
    auto transition = Function_group_state_transition::kInTransition;
    EXPECT_EQ(sut.GetState("Windows", state, transition), State_client_result::kSuccess);
    EXPECT_EQ(state, "Open");
    EXPECT_EQ(transition, Function_group_state_transition::kReached);
}

TEST_F(Em_adapter_on_a_bus, Finds_the_machine_started_when_its_target_is_active) {
    set_unit("MachineState-Startup.target", "activating");
    EXPECT_FALSE(sut.check_for_running_state());
    set_unit("MachineState-Startup.target", "active");
    EXPECT_TRUE(sut.check_for_running_state());
    EXPECT_THAT(log.at_least(LogLevel::kError), IsEmpty());
}

TEST_F(Em_adapter_on_a_bus, Finds_no_machine_started_that_has_no_state) {
    set_unit("MachineState-Startup.target", "inactive");
    EXPECT_FALSE(sut.check_for_running_state());
    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kError, "EM has not been started. Error code: ", 1)));
}

}  // namespace
}  // namespace ximo::ap::statemanager
