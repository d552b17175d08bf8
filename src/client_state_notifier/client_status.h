#ifndef CLIENT_STATE_NOTIFIER_CLIENT_STATUS_H
#define CLIENT_STATE_NOTIFIER_CLIENT_STATUS_H

#include <cstdint>
#include <map>
#include <string>

namespace client_state_notifier {

/// How one client took a request: the byte that it reported, so any value may occur. In the order of how bad it is; one
/// that is not named here is worse than "invalid" and not as bad as "timed out".
enum class Component_client_return_type : std::uint8_t {
    succeeded = 0,
    general_error = 1,
    invalid = 2,
    timed_out = 3,  ///< also what the server writes for a client without an answer in time
};

/// How a request ended for all that were asked.
enum class Callback_status : std::uint32_t {
    succeeded = 0,  ///< all answered, all with success; also when there was nobody to ask
    timed_out = 1,  ///< the deadline passed first
    failed = 2,     ///< all answered, at least one without success
};

/// What is remarkable about a client.
enum class Client_status : std::uint32_t {
    connected_under_known_name = 0,  ///< another connection has the name already; both stay
    answered_out_of_turn = 1,        ///< answered anything but the last request that it was sent
};

/// The outcome of a request by the clients' names. Where several connections share a name, the worst of theirs.
using Client_results = std::map<std::string, Component_client_return_type>;

}  // namespace client_state_notifier

#endif
