// States call this on the driver's thread when they are entered: Running asks for the machine state "Running",
// Shutting down for "Shutdown". What comes of it is told, and changes nothing.

#include "statemanager/em/em_interface.h"

#include "ara/log/logging.h"
#include "status/driver_status.h"

#include <stdexcept>

namespace ximo::ap::statemanager {

using ara::exec::Function_group_state_transition;
using ara::exec::State_client_result;

namespace {

constexpr char const* k_machine_state = "MachineState";

}  // namespace

void Em_interface::request_shutdown() {
    ara::log::LogInfo() << "Setting EM machine state to shutdown";
    request("Shutdown", "StateClient::SetState(MachineState, Shutdown) exception: ");
}

void Em_interface::request_running() {
    ara::log::LogInfo() << "Setting EM machine state to running";
    request("Running", "StateClient::SetState(MachineState, Running) exception: ");
}

void Em_interface::request(char const* state, char const* failure) {
    try {
        auto const result = StateClient_SetState(k_machine_state, state);
        status::machine_state(state, result == State_client_result::kSuccess);
    } catch (std::runtime_error const& error) {
        status::machine_state(state, false);
        ara::log::LogError() << failure << error.what();
    }
}

bool Em_interface::check_for_running_state() {
    std::string state;
    auto transition = Function_group_state_transition::kInTransition;
    try {
        auto const result = GetState(k_machine_state, state, transition);
        if (result != State_client_result::kSuccess) {
            ara::log::LogError() << "EM has not been started. Error code: " << static_cast<std::int32_t>(result);
            return false;
        }
    } catch (std::runtime_error const& error) {
        ara::log::LogError() << "StateClient::GetState(MachineState, state, phase) exception: " << error.what();
    }
    return em_started(state, transition);
}

State_client_result Em_interface::StateClient_SetState(std::string const& function_group, std::string const& state) {
    return state_client_.SetState(function_group, state);
}

State_client_result Em_interface::GetState(std::string const& function_group, std::string& state,
                                           Function_group_state_transition& transition) {
    return state_client_.GetState(function_group, state, transition);
}

bool Em_interface::em_started(std::string const& state, Function_group_state_transition transition) {
    return transition == Function_group_state_transition::kReached && (state == "Startup" || state == "Running");
}

}  // namespace ximo::ap::statemanager
