#ifndef ARA_EXEC_STATE_CLIENT_H
#define ARA_EXEC_STATE_CLIENT_H

#include <cstdint>
#include <map>
#include <string>

namespace ara::exec {

enum class Function_group_state_transition : std::uint32_t { kInTransition = 0, kReached = 1 };
enum class State_client_result : std::int32_t { kSuccess = 0, kUnknownState = 1, kRefused = 2 };

/// Tells "GROUP STATE"; each state is reached at once.
class StateClient {
 public:
    StateClient();
    State_client_result SetState(std::string const& function_group, std::string const& state);
    State_client_result GetState(std::string const& function_group, std::string& state,
                                 Function_group_state_transition& transition);

 private:
    std::map<std::string, std::string> states_;
};

}  // namespace ara::exec

#endif
