#include "client_state_notifier/client_states_front.h"

#include "utilities/logger.h"

namespace client_state_notifier {

std::vector<std::pair<std::string, std::string>> Client_states_front::get_connected_clients() const {
    return clients_.list();
}

void Client_states_front::set_default_state(std::string const& state) {
    clients_.set_current_state(state);
}

bool Client_states_front::request_state_change(std::string const& state, Client_predicate const& predicate,
                                               Completion_callback const& completed, std::chrono::seconds timeout) {
    if (!predicate || !completed) {
        return false;
    }
    if (!requests_.put({state, predicate, completed, surroundings_.now() + timeout, 0})) {
        utilities::get_logger().LogError() << "the server can't be told to ask clients for " << state;
        return false;
    }
    return true;
}

}  // namespace client_state_notifier
