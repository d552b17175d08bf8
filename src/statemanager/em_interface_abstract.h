#ifndef STATEMANAGER_EM_INTERFACE_ABSTRACT_H
#define STATEMANAGER_EM_INTERFACE_ABSTRACT_H

#include "ara/exec/state_client.h"

#include <string>

namespace ximo::ap::statemanager {

/// Execution management as the states see it: the state of the machine-wide function group.
class Em_interface_abstract {
 public:
    Em_interface_abstract() = default;
    virtual ~Em_interface_abstract() = default;
    Em_interface_abstract(Em_interface_abstract const&) = delete;
    Em_interface_abstract& operator=(Em_interface_abstract const&) = delete;

    /// Asks for the machine state "Shutdown"; a failure is logged.
    virtual void request_shutdown() = 0;

    /// Asks for the machine state "Running"; a failure is logged.
    virtual void request_running() = 0;

    /// Tells whether the machine has been started completely.
    virtual bool check_for_running_state() = 0;

    /// The platform's own operations, where a substitute can stand in for execution management. They throw
    /// `std::runtime_error` when it can't be reached.
    virtual ara::exec::State_client_result StateClient_SetState(std::string const& function_group,
                                                                std::string const& state) = 0;
    virtual ara::exec::State_client_result GetState(std::string const& function_group, std::string& state,
                                                    ara::exec::Function_group_state_transition& transition) = 0;
};

}  // namespace ximo::ap::statemanager

#endif
