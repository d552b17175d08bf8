#ifndef CLIENT_STATE_NOTIFIER_CLIENT_STATES_FRONT_H
#define CLIENT_STATE_NOTIFIER_CLIENT_STATES_FRONT_H

#include "client_state_notifier/client_register.h"
#include "client_state_notifier/client_states.h"
#include "client_state_notifier/request_slot.h"
#include "client_state_notifier/surroundings.h"

#include <string>
#include <utility>
#include <vector>

namespace client_state_notifier {

/// What callers see of the server: they ask the register, and put requests into the slot. Who serves is told below.
class Client_states_front : public Client_states {
 public:
    std::vector<std::pair<std::string, std::string>> get_connected_clients() const override;
    void set_default_state(std::string const& state) override;
    bool request_state_change(std::string const& state, Client_predicate const& predicate,
                              Completion_callback const& completed, std::chrono::seconds timeout) override;

 protected:
    /// The surroundings must outlive the object.
    Client_states_front(std::string const& current_state, Surroundings& surroundings)
        : surroundings_(surroundings), requests_(surroundings), clients_(current_state) {}

    Surroundings& surroundings_;
    Request_slot requests_;
    Client_register clients_;
};

}  // namespace client_state_notifier

#endif
