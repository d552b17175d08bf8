#ifndef STATE_NOTIFIER_CLIENT_REPORT_H
#define STATE_NOTIFIER_CLIENT_REPORT_H

#include "client_state_notifier/client_status.h"

#include <string>

namespace ximo::ap::statemanager::state_notifier {

// What the log says of the clients. Any thread.

/// A warning about a client that has reported `state` when nobody expected a report of it.
void log_out_of_turn(std::string const& name, client_state_notifier::Client_status status, std::string const& state);

/// A line for each client: how it took the request.
void log_clients(client_state_notifier::Client_results const& results);

}  // namespace ximo::ap::statemanager::state_notifier

#endif
