// Linked into a test program, this takes the place of the real server: no thread, no socket, nobody ever connects.

#include "support/fake_client_states.h"

#include <memory>

namespace client_state_notifier {

std::unique_ptr<Client_states> create_client_states(std::string const& current_state,
                                                    Status_callback const& status_callback) {
    auto clients = std::make_unique<test_support::Fake_client_states>();
    clients->default_state = current_state;
    clients->report = status_callback;
    test_support::last_made_clients = clients.get();
    return clients;
}

}  // namespace client_state_notifier
