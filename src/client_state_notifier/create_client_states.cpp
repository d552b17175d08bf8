#include "client_state_notifier/client_states_impl.h"
#include "utilities/protocol.h"

namespace client_state_notifier {

std::unique_ptr<Client_states> create_client_states(std::string const& current_state,
                                                    Status_callback const& status_callback) {
    return std::make_unique<Client_states_impl>(current_state, status_callback, utilities::get_socket_path());
}

}  // namespace client_state_notifier
