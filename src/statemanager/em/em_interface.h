#ifndef STATEMANAGER_EM_EM_INTERFACE_H
#define STATEMANAGER_EM_EM_INTERFACE_H

#include "ara/exec/state_client.h"
#include "statemanager/em_interface_abstract.h"

#include <string>

namespace ximo::ap::statemanager {

/// Execution management of this machine. Requests are fire and forget: what goes wrong is logged.
class Em_interface : public Em_interface_abstract {
 public:
    void request_shutdown() override;
    void request_running() override;
    bool check_for_running_state() override;
    ara::exec::State_client_result StateClient_SetState(std::string const& function_group,
                                                        std::string const& state) override;
    ara::exec::State_client_result GetState(std::string const& function_group, std::string& state,
                                            ara::exec::Function_group_state_transition& transition) override;

    /// Whether the machine counts as started: "Startup" or "Running", and that state has been reached.
    static bool em_started(std::string const& state, ara::exec::Function_group_state_transition transition);

 private:
    void request(char const* state, char const* failure);

    ara::exec::StateClient state_client_;
};

}  // namespace ximo::ap::statemanager

#endif
