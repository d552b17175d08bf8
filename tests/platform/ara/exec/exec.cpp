#include "ara/exec/application_client.h"
#include "ara/exec/state_client.h"
#include "told/told.h"

namespace ara::exec {

ApplicationClient::ApplicationClient() {
    told::tell({"exec", "application"});
}

void ApplicationClient::ReportApplicationState(ApplicationState state) {
    told::tell({"exec", state == ApplicationState::kRunning ? "running" : "terminating"});
}

StateClient::StateClient() {
    told::tell({"exec", "client"});
}

State_client_result StateClient::SetState(std::string const& function_group, std::string const& state) {
    told::tell({"exec", function_group + ' ' + state});
    states_[function_group] = state;
    return State_client_result::kSuccess;
}

State_client_result StateClient::GetState(std::string const& function_group, std::string& state,
                                          Function_group_state_transition& transition) {
    auto const found = states_.find(function_group);
    if (found == states_.end()) {
        return State_client_result::kUnknownState;
    }
    state = found->second;
    transition = Function_group_state_transition::kReached;
    return State_client_result::kSuccess;
}

}  // namespace ara::exec
