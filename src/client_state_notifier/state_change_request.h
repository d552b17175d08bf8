#ifndef CLIENT_STATE_NOTIFIER_STATE_CHANGE_REQUEST_H
#define CLIENT_STATE_NOTIFIER_STATE_CHANGE_REQUEST_H

#include "client_state_notifier/client_states.h"

#include <chrono>
#include <cstdint>
#include <string>

namespace client_state_notifier {

/// What a caller asked for.
struct State_change_request {
    std::string state;
    Client_predicate predicate;
    Completion_callback completed;
    std::chrono::steady_clock::time_point deadline;
    std::uint32_t request_number{0};  ///< counts the requests of all callers; given when it is put into the slot
};

}  // namespace client_state_notifier

#endif
